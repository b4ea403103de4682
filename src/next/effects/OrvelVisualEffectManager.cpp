#include "next/effects/OrvelVisualEffectManager.h"

#include "app/OrvelEffectModuleData.h"
#include "base/OrvelPaths.h"
#include "next/OrvelNext.h"
#include "next/OrvelStateTracker.h"
#include "next/OrvelTexture.h"
#include "next/effects/OrvelBrownEffectInstance.h"
#include "next/effects/OrvelGreenEffectInstance.h"
#include "next/effects/OrvelLutEffect.h"
#include "next/effects/OrvelLutEffectInstance.h"
#include "settings/OrvelSettings.h"

#include <utility>

namespace android::orvel::next {

namespace {

constexpr char kResourceFolder[] = "/vendor/odm/etc/game/effect/";
constexpr uint32_t kFilterModuleId = 2; // in both games
constexpr GLsizei kTriangle = 3;

/** @return nothing for a file without a name */
std::string resourcePath(const char* file) {
    return file ? systemPath((std::string(kResourceFolder) + file).c_str()) : std::string();
}

template <typename Instance, typename Effect>
std::unique_ptr<OrvelVisualEffectInstance> makeInstance(OrvelVisualEffect* effect) {
    return std::make_unique<Instance>(static_cast<Effect*>(effect));
}

template <typename Effect>
std::unique_ptr<OrvelVisualEffect> makeEffect(bool binary) {
    return std::make_unique<Effect>(binary);
}

} // namespace

constexpr std::array<OrvelVisualEffectManager::FilterType, OrvelVisualEffectManager::kFilterTypes>
    OrvelVisualEffectManager::kTypes = {{
        {EFFECT_NONE, nullptr, nullptr},
        {EFFECT_GREEN, nullptr, nullptr},
        {EFFECT_BROWN, nullptr, nullptr},
        {EFFECT_LUT, "kelaiyinlan.png", nullptr},
        {EFFECT_LUT, nullptr, "heijin.png"},
        {EFFECT_LUT, nullptr, "jinqiu.png"},
        {EFFECT_LUT, "nuancheng.png", nullptr},
        {EFFECT_LUT, "saibopengke.png", "saibopengke.png"},
        {EFFECT_LUT, nullptr, "lengqing.png"},
    }};

constexpr std::array<const char*, OrvelVisualEffectManager::EFFECT_COUNT> OrvelVisualEffectManager::kBinaries = {
    nullptr, "nightgreen.bin", "oldbrown.bin", "lut.bin"};

size_t PNGImageHash::operator()(const PNGImageInfo& image) const {
    return static_cast<size_t>((uint64_t{image.width} * 31 + image.height) * 31 + image.internalFormat + 148955);
}

OrvelVisualEffectManager::OrvelVisualEffectManager() : mApplicationType(OrvelSettings::getInstance().mApplicationType) {
    mPngCache.max_load_factor(1.0F);
    if (mApplicationType != APP_TYPE_SGAME && mApplicationType != APP_TYPE_PUBG) {
        return;
    }
    InitFactories();
    auto& configuration = OrvelSettings::getInstance().getProcessorData();
    const auto* filter =
        dynamic_cast<app::module::OrvelEffectModuleData*>(configuration.GetProcessorModuleData(kFilterModuleId));
    if (filter) {
        mEffectBinary = filter->effectBinary;
        mInstanceLoadList = filter->effectTypes;
        mCheckPeriod = filter->checkPeriod;
    }
}

void OrvelVisualEffectManager::InitFactories() {
    mEffectFactory[EFFECT_GREEN] = makeEffect<OrvelGreenEffect>;
    mEffectFactory[EFFECT_BROWN] = makeEffect<OrvelBrownEffect>;
    mEffectFactory[EFFECT_LUT] = makeEffect<OrvelLutEffect>;
    // Also of types that the game has no image for: theirs are disabled when the image turns out to be missing.
    for (uint32_t type = 0; type < kFilterTypes; ++type) {
        switch (kTypes[type].effect) {
        case EFFECT_GREEN:
            mInstanceFactory[type] = makeInstance<OrvelGreenEffectInstance, OrvelGreenEffect>;
            break;
        case EFFECT_BROWN:
            mInstanceFactory[type] = makeInstance<OrvelBrownEffectInstance, OrvelBrownEffect>;
            break;
        case EFFECT_LUT:
            mInstanceFactory[type] = makeInstance<OrvelLutEffectInstance, OrvelLutEffect>;
            break;
        default:
            break;
        }
    }
}

OrvelVisualEffectManager::~OrvelVisualEffectManager() {
    // A context is mostly destroyed while another one is current, or none: its names would hit that one's objects.
    const bool ours = mContext != EGL_NO_CONTEXT && platform.eglGetCurrentContext() == mContext;
    for (auto& instance : mInstances) {
        if (instance && !ours) {
            instance->Abandon();
        }
        instance.reset();
    }
    for (auto& effect : mEffects) {
        if (effect && !ours) {
            effect->Abandon();
        }
        effect.reset();
    }
    for (auto& [image, texture] : mPngCache) {
        if (!ours) {
            texture->Abandon();
        }
        texture.reset();
    }
    if (ours) {
        gl.glDeleteVertexArrays(1, &mVao);
    }
}

void OrvelVisualEffectManager::FrameEnd() {
    ++mFrameCount;
    if (mFrameCount % mCheckPeriod == 0) {
        FollowFilterType();
    }
    if ((mFlags & FLAG_LOADING) != 0 && mLoadingEnabled) {
        LoadNext();
    }
}

void OrvelVisualEffectManager::FollowFilterType() {
    const auto type = static_cast<uint32_t>(OrvelSettings::getInstance().getFilterType()); // negative: above 8, too
    if (type == mCurrentType) {
        if (mFlags == 0) {
            CheckUpdateUniformParam();
        }
        return;
    }
    mCurrentType = type < kFilterTypes ? type : 0;
    if (mCurrentType == 0) {
        mCurrent = nullptr;
        mCurrentLut = nullptr;
        mFlags |= FLAG_NO_INSTANCE;
    } else if ((mFlags & FLAG_LOADING) == 0) {
        OnEffectInstanceTypeChanged();
    }
}

void OrvelVisualEffectManager::LoadNext() {
    // An index moves on first: what throws is not tried again.
    if (mVaoPending) {
        OrvelStateTracker saved(/*autoRestore=*/true);
        mVaoPending = false;
        mContext = platform.eglGetCurrentContext();
        saved.StoreVertexArrayBinding();
        gl.glGenVertexArrays(1, &mVao);
        gl.glBindVertexArray(mVao);
    } else if (mEffectLoadIndex < kEffectLoadList.size()) {
        LoadEffect(mEffectLoadIndex++);
    } else if (mInstanceLoadIndex < mInstanceLoadList.size()) {
        LoadInstance(mInstanceLoadList[mInstanceLoadIndex++]);
    } else {
        mFlags &= ~FLAG_LOADING;
        if (!mCurrent && mCurrentType != 0) {
            OnEffectInstanceTypeChanged();
        }
    }
}

void OrvelVisualEffectManager::LoadEffect(size_t position) {
    const uint32_t id = kEffectLoadList[position];
    const bool binary = position < mEffectBinary.size() && mEffectBinary[position];
    mEffects[id] = mEffectFactory[id](binary);
    mEffects[id]->Init(resourcePath(kBinaries[id]));
}

void OrvelVisualEffectManager::LoadInstance(uint32_t type) {
    const FilterType& filter = kTypes[type];
    mInstances[type].reset(); // of a type that is listed twice
    mInstances[type] = mInstanceFactory[type](mEffects[filter.effect].get());
    if (mInstances[type]->IsEnabled()) {
        const bool sgame = mApplicationType == APP_TYPE_SGAME;
        mInstances[type]->Init(this, resourcePath(sgame ? filter.sgameImage : filter.pubgImage));
    }
}

void OrvelVisualEffectManager::OnEffectInstanceTypeChanged() {
    mCurrent = mInstances[mCurrentType].get();
    mCurrentLut = kTypes[mCurrentType].effect == EFFECT_LUT ? static_cast<OrvelLutEffectInstance*>(mCurrent) : nullptr;
    if (mCurrent && mCurrent->IsEnabled()) {
        mFlags &= ~FLAG_NO_INSTANCE;
        mCurrent->SetDirty(); // the texture, too: another type may have filled it since
        CheckUpdateUniformParam();
    } else {
        mFlags |= FLAG_NO_INSTANCE;
    }
}

void OrvelVisualEffectManager::CheckUpdateUniformParam() {
    if (!mCurrent) {
        return;
    }
    const OrvelSettings& settings = OrvelSettings::getInstance();
    if (const bool darkEdge = settings.getDarkEdge() != 0; darkEdge != mCurrent->IsDarkEdgeEnabled()) {
        mCurrent->EnableDarkEdge(darkEdge);
    }
    if (mCurrentLut) {
        if (const int32_t strength = settings.getLutStrength(); strength != mCurrentLut->GetLutStrength()) {
            mCurrentLut->SetLutStrength(strength);
        }
    }
}

void OrvelVisualEffectManager::Render(OrvelStateTracker& tracker) {
    // Asked beforehand: to draw where the game itself cannot would leave an error in its context.
    if (!EnableRender() || gl.glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
        return;
    }
    tracker.StoreProgram();
    tracker.StoreVertexArrayBinding();
    mCurrent->GetEffect()->BindProgram();
    mCurrent->Tick(tracker);
    gl.glBindVertexArray(mVao);
    gl.glDrawArrays(GL_TRIANGLES, 0, kTriangle);
    if (mCurrentLut) {
        mCurrentLut->ReleaseTextureUnit();
    }
}

OrvelTexture2D* OrvelVisualEffectManager::GetPNGTexture(int width, int height, GLenum internalFormat) {
    const PNGImageInfo image{static_cast<uint32_t>(width), static_cast<uint32_t>(height), internalFormat};
    if (const auto cached = mPngCache.find(image); cached != mPngCache.end()) {
        return cached->second.get();
    }
    // Asked beforehand: a size that the driver refuses would leave an error in the game's context.
    GLint maxSize = 0;
    gl.glGetIntegerv(GL_MAX_TEXTURE_SIZE, &maxSize);
    if (width > maxSize || height > maxSize) {
        return nullptr;
    }
    std::unique_ptr<OrvelTexture2D> texture(CreateTexture2D(internalFormat, width, height));
    texture->Bind();
    GLint hasStorage = 0;
    gl.glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_IMMUTABLE_FORMAT, &hasStorage);
    if (!hasStorage) {
        texture->UnBind();
        return nullptr;
    }
    texture->SetMinFilter(GL_LINEAR).SetMagFilter(GL_LINEAR).SetWrapS(GL_CLAMP_TO_EDGE).SetWrapT(GL_CLAMP_TO_EDGE);
    texture->UnBind();
    return (mPngCache[image] = std::move(texture)).get();
}

int OrvelVisualEffectManager::GetMaxTextureUnits() {
    if (mMaxTextureUnits == 0) {
        gl.glGetIntegerv(GL_MAX_TEXTURE_IMAGE_UNITS, &mMaxTextureUnits);
    }
    return mMaxTextureUnits;
}

} // namespace android::orvel::next
