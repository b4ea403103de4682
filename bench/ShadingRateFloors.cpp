#include "ShadingRateFloors.h"

#include <array>

using namespace android::orvel;

namespace {

constexpr GLenum kFull = 0x96A6;
constexpr GLenum kCoarse[] = {0x96AE, 0x96A9};
constexpr size_t kSlots = 256; // a power of two
// Bits of the mask: what choosing a rate takes, and what setting it takes.
constexpr uint8_t kChooses = 0xCF;
constexpr uint8_t kActs = 0xFF;

struct Node {
    void* owner;
    void (*draw)(void* owner, GLenum mode, GLsizei count, GLenum type, const void* indices);
    void (*bind)(void* owner, GLenum target, GLuint texture);
    Node* next;
};

struct Processor {
    GLuint framebuffer = 0;
    uint32_t sceneDraws = 0;
    uint32_t uiDraws = 0;
    uint32_t clears = 0;
    uint32_t drawFlags = 0;
    int clearProgram = 0;
    size_t lobbyTextures = 0;
    size_t battleTextures = 0;
    size_t heroTextures = 0;
    void (*bindHandler)(Processor& processor) = nullptr;
    Node* head = nullptr;
};

struct Module {
    uint8_t mask = 0;
    bool smallWindow = false;
    bool chosen = false;
    int quality = 0;
    GLenum wanted = kFull;
    GLenum applied = kFull;
    GLuint bound = 0;
    std::array<GLuint, kSlots> names{};
    std::array<GLenum, kSlots> rates{};
};

Processor sProcessor;
Module sModule;
thread_local Processor* sSlot = nullptr;

void bindInLobby(Processor& processor) {
    if (processor.lobbyTextures != 0 || processor.battleTextures != 0 || processor.heroTextures != 0) {
        processor.drawFlags = 0; // never
    }
}

void bindInBattle(Processor& processor) {
    if (processor.battleTextures != 0) {
        processor.drawFlags = 0; // never
    }
}

void drawOnDriver(void*, GLenum mode, GLsizei count, GLenum type, const void* indices) {
    next::gl.glDrawElements(mode, count, type, indices);
}
void bindOnDriver(void*, GLenum target, GLuint texture) { next::gl.glBindTexture(target, texture); }

Node sDriver = {nullptr, drawOnDriver, bindOnDriver, nullptr};
Node* sNext = &sDriver;

void setRate(Module& module, GLenum rate) {
    module.applied = rate;
    next::ext.glShadingRateEXT(rate);
}

void drawWithRate(void* owner, GLenum mode, GLsizei count, GLenum type, const void* indices) {
    Module& module = *static_cast<Module*>(owner);
    if (module.mask == kActs && sProcessor.drawFlags < 5 && !module.smallWindow && module.quality <= 2) {
        module.chosen = false;
        if (module.wanted != module.applied) {
            setRate(module, module.wanted);
        }
    } else if (module.wanted != kFull) {
        module.wanted = kFull;
        setRate(module, kFull);
    }
    sNext->draw(sNext->owner, mode, count, type, indices);
}

void bindAndChoose(void* owner, GLenum target, GLuint texture) {
    Module& module = *static_cast<Module*>(owner);
    if (target == GL_TEXTURE_2D && !module.smallWindow) {
        module.bound = texture;
        if ((module.mask & kChooses) == kChooses && !module.chosen && sProcessor.drawFlags < 5) {
            size_t at = texture % kSlots;
            while (module.names[at] != 0 && module.names[at] != texture) {
                at = (at + 1) % kSlots;
            }
            if (module.names[at] == texture) {
                module.wanted = module.rates[at];
                module.chosen = true;
            }
        }
    }
    sNext->bind(sNext->owner, target, texture);
}

uint8_t maskOf(Shading state) {
    switch (state) {
    case Shading::ACTING:
        return kActs;
    case Shading::LEARNING:
        return kActs & ~0xC0; // no level, so no table of rates
    default:
        return kActs & ~0xC8; // no battle either
    }
}

Node sOwn = {&sModule, drawWithRate, bindAndChoose, &sDriver};

void GL_APIENTRY floorDrawElements(GLenum mode, GLsizei count, GLenum type, const void* indices) {
    Processor* const processor = sSlot;
    if (!processor) {
        next::gl.glDrawElements(mode, count, type, indices);
        return;
    }
    ++(processor->clears == 0 ? processor->sceneDraws : processor->uiDraws);
    if (processor->clearProgram != 0 && processor->clearProgram != 3) {
        processor->clearProgram = 0;
    }
    processor->head->draw(processor->head->owner, mode, count, type, indices);
}

void GL_APIENTRY floorBindTexture(GLenum target, GLuint texture) {
    Processor* const processor = sSlot;
    if (!processor) {
        next::gl.glBindTexture(target, texture);
        return;
    }
    if (texture != 0 && processor->framebuffer == 0) {
        processor->bindHandler(*processor);
    }
    processor->head->bind(processor->head->owner, target, texture);
}

} // namespace

void installShadingRateFloors(next::GlTable& table) {
    table.glDrawElements = floorDrawElements;
    table.glBindTexture = floorBindTexture;
    sSlot = &sProcessor;
}

void setShadingRateFloors(Shading state, GLuint count) {
    sProcessor = {.drawFlags = 4, .bindHandler = state == Shading::IDLE ? bindInLobby : bindInBattle, .head = &sOwn};
    sModule = {.mask = maskOf(state), .quality = 1};
    for (GLuint texture = 1; texture <= count; ++texture) {
        sModule.names[texture % kSlots] = texture;
        sModule.rates[texture % kSlots] = kCoarse[texture % 2];
    }
}
