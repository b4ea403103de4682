#include "SGameFloors.h"

#include <array>

using namespace android::orvel;

namespace {

constexpr size_t kSlots = 256; // of a set; a power of two

/** Names at their place, or behind it; 0 is no name. */
struct Names {
    std::array<GLuint, kSlots> slots;
    size_t count;

    void insert(GLuint name) {
        slots[name % kSlots] = name;
        ++count;
    }
    bool has(GLuint name) const {
        if (count == 0) {
            return false;
        }
        size_t at = name % kSlots;
        while (slots[at] != 0 && slots[at] != name) {
            at = (at + 1) % kSlots;
        }
        return slots[at] == name;
    }
};

struct Processor {
    int scene;
    int status;
    GLuint framebuffer;
    uint32_t sceneDraws;
    uint32_t uiDraws;
    uint32_t clears;
    uint32_t drawFlags = 4;
    uint32_t sceneFlags;
    int clearProgram;
    bool lobbySeen;
    bool battleSeen;
    bool heroSelectSeen;
    Names lobby;
    Names battle;
    Names heroSelect;
    void (*bindHandler)(Processor& processor, GLuint texture) = nullptr;
    bool skipNextDraw;
    bool rendered;
    bool resultSeen;
    Names skip;
    Names result;
};

struct Context {
    Processor* processor;
};

void bindInLobby(Processor& processor, GLuint texture) {
    if (!processor.lobbySeen && processor.lobby.has(texture)) {
        processor.lobbySeen = true;
    }
    if (processor.battle.has(texture)) {
        processor.battleSeen = true;
    }
    if (processor.heroSelect.has(texture)) {
        processor.heroSelectSeen = true;
    }
}

Processor sProcessor;
Context sContext = {&sProcessor};
thread_local Context* sSlot = nullptr;

void GL_APIENTRY floorDrawElements(GLenum mode, GLsizei count, GLenum type, const void* indices) {
    if (sSlot && sSlot->processor) {
        Processor& processor = *sSlot->processor;
        ++(processor.clears == 0 ? processor.sceneDraws : processor.uiDraws);
        if (processor.clearProgram != 0 && processor.clearProgram != 3) {
            processor.clearProgram = 0;
        }
        if (processor.skipNextDraw) {
            processor.skipNextDraw = false;
        } else if (processor.sceneFlags == 3 && processor.drawFlags >= 5 && !processor.rendered) {
            processor.rendered = true;
        }
    }
    next::gl.glDrawElements(mode, count, type, indices);
}

void GL_APIENTRY floorBindTexture(GLenum target, GLuint texture) {
    if (sSlot && sSlot->processor) {
        Processor& processor = *sSlot->processor;
        if (texture != 0 && processor.framebuffer == 0) {
            processor.bindHandler(processor, texture);
        }
        if (processor.status == 2 && texture != 0 && processor.drawFlags >= 5) {
            processor.skipNextDraw = processor.skipNextDraw || processor.skip.has(texture);
        } else if (!processor.resultSeen && processor.scene != 7 && processor.scene != 8 &&
                   processor.result.has(texture)) {
            processor.resultSeen = true;
        }
    }
    next::gl.glBindTexture(target, texture);
}

} // namespace

void installSGameFloors(next::GlTable& table) {
    table.glDrawElements = floorDrawElements;
    table.glBindTexture = floorBindTexture;
    sSlot = &sContext;
}

void setSGameFloorTextures(GLuint count) {
    sProcessor.bindHandler = bindInLobby;
    for (GLuint texture = 1; texture <= count; ++texture) {
        sProcessor.lobby.insert(texture);
        sProcessor.result.insert(texture);
    }
}
