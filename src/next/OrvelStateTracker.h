// Borrowed GL state, put back by scope.
#pragma once

#include "next/OrvelNext.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <unordered_map>
#include <vector>

namespace android::orvel::next {

/**
 * Records pieces of the current context's GL state and puts them back. Lives on the stack around one injected
 * rendering step: store, draw, restore. The driver is asked at every store; nothing is guessed.
 *
 * Restoring runs in storing order, first to last. Store a kind once and before changing it: a second store of the
 * same kind replaces the saved value. Belongs to the thread that made it. All calls go to the saved driver table.
 *
 * A usual step asks for no memory: its records lie in the tracker itself, and only what has no room goes to the heap.
 */
class OrvelStateTracker {
public:
    /** @param autoRestore the destructor restores what is still recorded */
    explicit OrvelStateTracker(bool autoRestore);
    ~OrvelStateTracker();
    OrvelStateTracker(const OrvelStateTracker&) = delete;
    OrvelStateTracker& operator=(const OrvelStateTracker&) = delete;

    void StoreActiveTexture();
    GLenum GetStoredActiveTexture() const { return static_cast<GLenum>(activeTexture); }
    /** The binding of the unit that is active now; restored to the unit that is active then. */
    void StoreTextureBinding2D();
    void StoreBlendState();
    void StoreDepthState();
    void StoreStencilState();
    void StoreEnabled(GLenum cap);
    /** Records value without asking the driver. */
    void StoreEnabled(GLenum cap, bool value);
    void StoreFramebufferDraw();
    void StoreFramebufferRead();
    /** Saves the draw binding and restores it to both targets. */
    void StoreFramebuffer();
    void StoreProgram();
    void StoreArraybufferBinding();
    void StoreElementArrayBufferBinding();
    void StoreVertexArrayBinding();

    /** Puts everything back and forgets it. */
    void Restore();

private:
    // Ids of the kinds of state, in the order of the restore operations' table.
    enum StateKind : uint32_t {
        ACTIVE_TEXTURE,
        TEXTURE_BINDING_2D,
        BLEND_STATE,
        DEPTH_STATE,
        STENCIL_STATE,
        ENABLED,
        FRAMEBUFFER_DRAW,
        FRAMEBUFFER_READ,
        FRAMEBUFFER,
        PROGRAM,
        ARRAY_BUFFER_BINDING,
        ELEMENT_ARRAY_BUFFER_BINDING,
        VERTEX_ARRAY_BINDING,
        STATE_KIND_COUNT,
    };

    struct BlendState {
        GLboolean enabled = GL_FALSE;
        GLint equationRgb = GL_FUNC_ADD;
        GLint equationAlpha = GL_FUNC_ADD;
        GLint srcRgb = GL_ONE;
        GLint srcAlpha = GL_ONE;
        GLint dstRgb = GL_ZERO;
        GLint dstAlpha = GL_ZERO;
    };

    struct DepthState {
        GLboolean enabled = GL_FALSE;
        GLboolean writeMask = GL_TRUE;
        GLint func = GL_LESS;
    };

    // Masks are read back as signed and clamped (~0 reads 0x7FFFFFFF), which is the same for stencils of 8 bits.
    struct StencilFace {
        GLint func = GL_ALWAYS;
        GLint ref = 0;
        GLint valueMask = ~0;
        GLint fail = GL_KEEP;
        GLint depthFail = GL_KEEP;
        GLint depthPass = GL_KEEP;
        GLint writeMask = ~0;
    };

    // Restore operations take the record's position in the list; only RestoreEnabled needs it.
    using RestoreOperation = void (OrvelStateTracker::*)(uint32_t position);

    void RestoreActiveTexture(uint32_t position);
    void RestoreTextureBinding2D(uint32_t position);
    void RestoreBlendState(uint32_t position);
    void RestoreDepthState(uint32_t position);
    void RestoreStencilState(uint32_t position);
    void RestoreEnabled(uint32_t position);
    void RestoreFramebufferDraw(uint32_t position);
    void RestoreFramebufferRead(uint32_t position);
    void RestoreFramebuffer(uint32_t position);
    void RestoreProgram(uint32_t position);
    void RestoreArraybufferBinding(uint32_t position);
    void RestoreElementArrayBufferBinding(uint32_t position);
    void RestoreVertexArrayBinding(uint32_t position);

    static const std::array<RestoreOperation, STATE_KIND_COUNT> kRestoreOperations;
    static constexpr size_t kRoom = 1024; // bytes; a list of 32 records, and eight capabilities in both maps

    const bool autoRestore;
    GLint activeTexture = GL_TEXTURE0;
    GLint textureBinding2D = 0;
    BlendState blend;
    DepthState depth;
    GLboolean stencilEnabled = GL_FALSE;
    StencilFace stencilFront;
    StencilFace stencilBack;
    GLint framebufferDraw = 0;
    GLint framebufferRead = 0;
    GLint framebuffer = 0;
    GLint program = 0;
    GLint arrayBufferBinding = 0;
    GLint elementArrayBufferBinding = 0;
    GLint vertexArrayBinding = 0;
    alignas(std::max_align_t) std::array<std::byte, kRoom> room;
    std::pmr::monotonic_buffer_resource memory{room.data(), room.size()}; // gives nothing back: a tracker ends soon
    std::pmr::unordered_map<uint32_t, bool> capEnabled{&memory};
    std::pmr::unordered_map<uint32_t, uint32_t> listIndexToCap{&memory};
    std::pmr::vector<uint32_t> records{&memory};
};

} // namespace android::orvel::next
