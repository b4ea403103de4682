// The GL entries that modules and processors can hook, by their names without "gl". One more row makes one more entry
// hookable: functor types, terminal nodes and global hooks are made from this list, signatures come from the driver's
// table.
#pragma once

/** Those that return nothing. */
#define ORVEL_HOOKABLE_GL_VOID(X)                                                                                      \
    X(ActiveTexture)                                                                                                   \
    X(BindFramebuffer)                                                                                                 \
    X(BlitFramebuffer)                                                                                                 \
    X(BindFramebufferOES)                                                                                              \
    X(TexStorage2D)                                                                                                    \
    X(TexStorage2DMultisample)                                                                                         \
    X(TexImage2D)                                                                                                      \
    X(FramebufferTexture2D)                                                                                            \
    X(FramebufferTexture2DMultisampleEXT)                                                                              \
    X(FramebufferTexture2DOES)                                                                                         \
    X(RenderbufferStorageMultisampleEXT)                                                                               \
    X(Viewport)                                                                                                        \
    X(Scissor)                                                                                                         \
    X(Uniform4fv)                                                                                                      \
    X(UseProgram)                                                                                                      \
    X(BindTexture)                                                                                                     \
    X(DeleteTextures)                                                                                                  \
    X(DeleteFramebuffers)                                                                                              \
    X(DeleteFramebuffersOES)                                                                                           \
    X(Enable)                                                                                                          \
    X(Disable)                                                                                                         \
    X(Clear)                                                                                                           \
    X(DeleteProgram)                                                                                                   \
    X(BindBuffer)                                                                                                      \
    X(BindBufferBase)                                                                                                  \
    X(BindBufferRange)                                                                                                 \
    X(BufferSubData)                                                                                                   \
    X(TexParameteri)                                                                                                   \
    X(DrawArrays)                                                                                                      \
    X(DrawArraysIndirect)                                                                                              \
    X(DrawArraysInstanced)                                                                                             \
    X(DrawBuffers)                                                                                                     \
    X(DrawElements)                                                                                                    \
    X(DrawElementsBaseVertex)                                                                                          \
    X(DrawElementsIndirect)                                                                                            \
    X(DrawElementsInstanced)                                                                                           \
    X(DrawRangeElements)                                                                                               \
    X(DiscardFramebufferEXT)                                                                                           \
    X(DeleteBuffers)                                                                                                   \
    X(Uniform4uiv)                                                                                                     \
    X(Uniform4iv)                                                                                                      \
    X(DispatchCompute)                                                                                                 \
    X(FramebufferRenderbuffer)                                                                                         \
    X(ShaderSource)                                                                                                    \
    X(AttachShader)                                                                                                    \
    X(ReadPixels)                                                                                                      \
    X(BufferData)                                                                                                      \
    X(TexSubImage2D)                                                                                                   \
    X(LabelObjectEXT)                                                                                                  \
    X(ProgramBinaryOES)                                                                                                \
    X(ProgramBinary)                                                                                                   \
    X(GetProgramBinaryOES)                                                                                             \
    X(GetProgramBinary)                                                                                                \
    X(BlendFuncSeparate)                                                                                               \
    X(ColorMask)

/** All of them. */
#define ORVEL_HOOKABLE_GL(X) ORVEL_HOOKABLE_GL_VOID(X) X(CreateShader)
