// The program of a colour filter.
#pragma once

#include "next/OrvelVisualProgram.h"

#include <cstdint>
#include <string>

namespace android::orvel::next {

/**
 * Draws one triangle over the whole framebuffer. The pixels under it come through framebuffer fetch, so nothing is
 * copied. An effect that cannot be made is not valid, and nothing is drawn with it. Used on the thread of the context
 * that it was made in.
 *
 * The order of the virtual operations is fixed: others count on the slots of the table.
 */
class OrvelVisualEffect {
public:
    /** @param binary whether the program comes from a file that the driver understands, else from our text */
    explicit OrvelVisualEffect(bool binary) : mBinary(binary) {}
    OrvelVisualEffect(const OrvelVisualEffect&) = delete;
    OrvelVisualEffect& operator=(const OrvelVisualEffect&) = delete;

    virtual ~OrvelVisualEffect() = default;
    /** Looks up the uniforms of a program that was just made. */
    virtual void PostInit() {}
    /** @return nothing where our text would not compile: such a driver has to be given program binaries */
    virtual std::string GetFragmentSource() = 0;
    virtual bool SupportFramebufferFetch() const = 0;

    /** Makes the program. @param path of its binary, with which our text is tried if the file is of no use */
    void Init(const std::string& path);
    void BindProgram() const { mProgram.Use(); }
    bool IsValid() const { return mValid; }
    const OrvelVisualProgram& GetProgram() const { return mProgram; }
    /** Forgets the program without deleting it: its context is not current, or gone. */
    void Abandon() { mProgram.Abandon(); }

    /** A triangle that covers the framebuffer, made of nothing but the number of the vertex. */
    static std::string GetVertexSource();

protected:
    /** @return the whole fragment shader around main(), or nothing; see GetFragmentSource() */
    std::string FragmentSource(const char* main) const;
    /** @return where the uniform lies; the effect is not valid without it */
    GLint FindUniform(const char* name);

private:
    enum FramebufferFetch : int32_t { FETCH_NONE = 0, FETCH_EXT = 1, FETCH_ARM = 2 };

    void CreateFromShaderSource();
    void CreateFromBinarySource(const std::string& path);

    OrvelVisualProgram mProgram;
    const bool mBinary;
    FramebufferFetch mFramebufferFetch = FETCH_NONE;
    bool mValid = false;
};

} // namespace android::orvel::next
