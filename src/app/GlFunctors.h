// For every hookable entry glXxx: the functor type GlXxxFunctor, and the nodes at which chains end.
//   sDriverGlXxx     calls the driver
//   sPreDummyGlXxx   does nothing; for a chain that runs before the call
//   sPostDummyGlXxx  does nothing; for a chain that runs after it
// Terminal nodes are shared by all processors and threads and never written.
#pragma once

#include "app/GlNode.h"
#include "app/HookableGl.h"
#include "next/OrvelNext.h"

namespace android::orvel::app::module {

/** The hook of a driver node. */
template <auto Slot>
struct CallDriver;
template <typename R, typename... Args, R (*next::GlTable::*Slot)(Args...)>
struct CallDriver<Slot> {
    static R hook(OrvelModuleBase*, Args... args) { return (next::gl.*Slot)(args...); }
};

#define ORVEL_FUNCTOR(Xxx)                                                                                             \
    struct Gl##Xxx##Functor : GlNode<Gl##Xxx##Functor, decltype(next::GlTable::gl##Xxx)> {                             \
        using GlNode::GlNode;                                                                                          \
        static constexpr Hook DummyGl##Xxx##Hooked = DoNothing;                                                        \
    };                                                                                                                 \
    inline constinit Gl##Xxx##Functor sPreDummyGl##Xxx{nullptr, Gl##Xxx##Functor::DummyGl##Xxx##Hooked};               \
    inline constinit Gl##Xxx##Functor sPostDummyGl##Xxx{nullptr, Gl##Xxx##Functor::DummyGl##Xxx##Hooked};              \
    inline constexpr Gl##Xxx##Functor::Hook DriverGl##Xxx = CallDriver<&next::GlTable::gl##Xxx>::hook;                 \
    inline constinit Gl##Xxx##Functor sDriverGl##Xxx{nullptr, DriverGl##Xxx};
ORVEL_HOOKABLE_GL_VOID(ORVEL_FUNCTOR)
#undef ORVEL_FUNCTOR

// glCreateShader: the hooks before the call return the new name, those after it are told.
struct PreGlCreateShaderFunctor : GlNode<PreGlCreateShaderFunctor, decltype(next::GlTable::glCreateShader)> {
    using GlNode::GlNode;
    static constexpr Hook DummyGlCreateShaderHooked = DoNothing;
};
struct PostGlCreateShaderFunctor : GlNode<PostGlCreateShaderFunctor, void (*)(GLenum type, GLuint createdShader)> {
    using GlNode::GlNode;
    static constexpr Hook DummyGlCreateShaderHooked = DoNothing;
};
inline constinit PreGlCreateShaderFunctor sPreDummyGlCreateShader{nullptr,
                                                                  PreGlCreateShaderFunctor::DummyGlCreateShaderHooked};
inline constinit PostGlCreateShaderFunctor sPostDummyGlCreateShader{
    nullptr, PostGlCreateShaderFunctor::DummyGlCreateShaderHooked};
inline constexpr PreGlCreateShaderFunctor::Hook DriverGlCreateShader = CallDriver<&next::GlTable::glCreateShader>::hook;
inline constinit PreGlCreateShaderFunctor sDriverGlCreateShader{nullptr, DriverGlCreateShader};

} // namespace android::orvel::app::module
