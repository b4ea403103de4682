// The library's objects on a real driver, without the rig: a current GLES 3 context that the saved tables lead to.
#pragma once

#include "next/OrvelNext.h"

#include <array>
#include <cstdint>
#include <vector>

/** Eight bits a channel, red first, rows from the bottom up. */
struct Picture {
    Picture(int w, int h) : width(w), height(h), pixels(static_cast<size_t>(w) * static_cast<size_t>(h)) {}

    using Pixel = std::array<uint8_t, 4>;
    Pixel& at(int x, int y) { return pixels[static_cast<size_t>(y * width + x)]; }
    const Pixel& at(int x, int y) const { return pixels[static_cast<size_t>(y * width + x)]; }

    /** @return the largest difference of any channel; 256 for pictures of different sizes */
    int differenceTo(const Picture& other) const;
    /** @return how many pixels differ by more than so many steps in some channel */
    size_t countDifferences(const Picture& other, int steps) const;

    int width;
    int height;
    std::vector<Pixel> pixels;
};

/** Current on the thread that made it; ends the process when there is none to be had. One at a time. */
class MesaContext {
public:
    MesaContext();
    ~MesaContext();
    MesaContext(const MesaContext&) = delete;
    MesaContext& operator=(const MesaContext&) = delete;

    // Textures with one level; the new one is bound. Nearest filters.
    static GLuint makeTexture(int width, int height);
    static GLuint makeTexture(const Picture& picture);
    static Picture readTexture(GLuint texture, int width, int height);

private:
    EGLDisplay mDisplay;
    EGLContext mContext;
};

/** A program that runs one fragment shader over a whole target. */
class ShaderPass {
public:
    ShaderPass(const char* vertexShader, const char* fragmentShader, int width, int height);

    GLuint program() const { return mProgram; }
    GLuint target() const { return mTarget; }
    /** @return where a uniform lies; the program is in use then */
    GLint uniform(const char* name) const;
    void draw(GLuint input) const;

private:
    GLuint mProgram;
    GLuint mTarget;
    GLuint mFramebuffer = 0;
    GLuint mVertices = 0;
    int mWidth;
    int mHeight;
};
