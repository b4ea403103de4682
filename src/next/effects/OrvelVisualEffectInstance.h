// An effect with the parameters of one filter type.
#pragma once

#include "next/OrvelStateTracker.h"

#include <cstdint>
#include <string>

namespace android::orvel::next {

class OrvelVisualEffect;
class OrvelVisualEffectManager;

/**
 * What changed since the last frame is sent to GL by Tick(), nothing else is. Used on the thread of its effect's
 * context, and not after its effect.
 *
 * The order of the virtual operations is fixed: others count on the slots of the table.
 */
class OrvelVisualEffectInstance {
public:
    explicit OrvelVisualEffectInstance(const OrvelVisualEffect* effect);
    OrvelVisualEffectInstance(const OrvelVisualEffectInstance&) = delete;
    OrvelVisualEffectInstance& operator=(const OrvelVisualEffectInstance&) = delete;

    virtual ~OrvelVisualEffectInstance() = default;
    /** Makes GL ready for the draw; the effect's program is in use. @param tracker records what has to be put back */
    virtual void Tick(OrvelStateTracker& tracker) = 0;
    /** Loads what the instance is made from; disables it when that is of no use. */
    virtual void Init(OrvelVisualEffectManager* /*manager*/, const std::string& /*resource*/) {}
    virtual OrvelVisualEffect* GetEffect() = 0;
    virtual void EnableDarkEdge(bool enable);
    /** Forgets its GL objects without deleting them: their context is not current, or gone. */
    virtual void Abandon() {}

    // Of the effect's program, which is in use; a name that it does not have is ignored.
    void SetUniform1i(const std::string& name, int value);
    /** @param count how many vectors of four numbers */
    void SetUniform4fv(const std::string& name, int count, const float* values);

    bool IsDarkEdgeEnabled() const { return mDarkEdge; }
    bool IsEnabled() const { return mEnabled; }
    /** Makes the next Tick() send everything. */
    void SetDirty() { mDirty = DIRTY_UNIFORMS | DIRTY_TEXTURE; }

protected:
    enum Dirty : uint32_t { DIRTY_UNIFORMS = 1, DIRTY_TEXTURE = 2 };
    static constexpr uint32_t kDirtyStates = 4; // handlers of an instance: for none, either, and both

    /** @return the value of the parameter that switches the dark edge; the shaders compare it with 1 */
    float DarkEdgeParam() const { return mDarkEdge ? 2.0F : 0.0F; }

    bool mDarkEdge = false;
    uint32_t mDirty = DIRTY_UNIFORMS | DIRTY_TEXTURE;
    bool mEnabled;

private:
    /** @return -1 also while nothing can be drawn */
    GLint FindUniform(const std::string& name);
};

} // namespace android::orvel::next
