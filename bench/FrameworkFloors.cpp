#include "FrameworkFloors.h"

using namespace android::orvel;

namespace {

struct Node {
    void* owner;
    void (*draw)(void* owner, GLenum mode, GLint first, GLsizei count);
    Node* next;
};

struct BindNode {
    void* owner;
    void (*bind)(void* owner, GLenum target, GLuint framebuffer);
};

struct Processor {
    Node* head;
    BindNode* bindHead;
    GLuint framebuffer;
};

struct Context {
    Processor* processor;
};

void drawOnDriver(void*, GLenum mode, GLint first, GLsizei count) { next::gl.glDrawArrays(mode, first, count); }

void drawOnNext(void* owner, GLenum mode, GLint first, GLsizei count) {
    Node* const next = static_cast<Node*>(owner)->next;
    next->draw(next->owner, mode, first, count);
}

void bindOnDriver(void*, GLenum target, GLuint framebuffer) { next::gl.glBindFramebuffer(target, framebuffer); }

Node sDriver = {nullptr, drawOnDriver, nullptr};
Node sNodes[2];
BindNode sBindDriver = {nullptr, bindOnDriver};
Processor sProcessor = {&sDriver, &sBindDriver, 0};
Context sContext = {&sProcessor};
thread_local Context* sSlot = nullptr;

void GL_APIENTRY floorDrawArrays(GLenum mode, GLint first, GLsizei count) {
    const Context* const slot = sSlot;
    if (!slot || !slot->processor) {
        next::gl.glDrawArrays(mode, first, count);
        return;
    }
    Node* const head = slot->processor->head;
    head->draw(head->owner, mode, first, count);
}

void GL_APIENTRY floorBindFramebuffer(GLenum target, GLuint framebuffer) {
    const Context* const slot = sSlot;
    if (!slot || !slot->processor) {
        next::gl.glBindFramebuffer(target, framebuffer);
        return;
    }
    Processor* const processor = slot->processor;
    if (target == GL_FRAMEBUFFER || target == GL_DRAW_FRAMEBUFFER) {
        processor->framebuffer = framebuffer;
    }
    BindNode* const head = processor->bindHead;
    head->bind(head->owner, target, framebuffer);
}

} // namespace

void installFrameworkFloors(next::GlTable& table) {
    table.glDrawArrays = floorDrawArrays;
    table.glBindFramebuffer = floorBindFramebuffer;
}

void setFloorNodes(int nodes) {
    sNodes[0] = {&sNodes[0], drawOnNext, nodes > 1 ? &sNodes[1] : &sDriver};
    sNodes[1] = {&sNodes[1], drawOnNext, &sDriver};
    sProcessor.head = nodes > 0 ? &sNodes[0] : &sDriver;
    sSlot = nodes < 0 ? nullptr : &sContext;
}
