#include "next/OrvelTexture.h"

#include "RecordingDriver.h"
#include "next/OrvelNext.h"
#include "next/OrvelPixelBuffer.h"
#include "next/OrvelPixelStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

using namespace android::orvel::next;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr GLint kGamesTexture = 5;
constexpr GLint kGamesBuffer = 6;

class Toolkit : public testing::Test {
protected:
    void SetUp() override {
        mDriver->answer<&GlTable::glGetIntegerv>([this](GLenum name, GLint* value) {
            *value = name == GL_TEXTURE_BINDING_2D            ? kGamesTexture
                     : name == GL_PIXEL_UNPACK_BUFFER_BINDING ? kGamesBuffer
                     : name == GL_UNPACK_ALIGNMENT            ? mAlignment
                                                              : 0;
        });
        mDriver->answer<&GlTable::glGenTextures>([](GLsizei, GLuint* name) { *name = 9; });
        mDriver->answer<&GlTable::glGenBuffers>([](GLsizei, GLuint* name) { *name = 8; });
        mDriver->answer<&GlTable::glMapBufferRange>(
            [this](GLenum, GLintptr, GLsizeiptr, GLbitfield) { return mMapped; });
    }
    /** What the driver saw since the last time, without the questions. */
    Calls calls() {
        Calls made = mDriver->callsWithout({"glGet", "glGen"});
        mDriver->forget();
        return made;
    }

    std::unique_ptr<RecordingDriver> mDriver = RecordingDriver::installed();
    char mMemory[16] = {};
    void* mMapped = mMemory;
    GLint mAlignment = 4;
};

} // namespace

// Catches a game's binding that is lost, and storage of another size or with other levels.
TEST_F(Toolkit, TextureComesWithStorageAndLeavesTheGamesBinding) {
    std::unique_ptr<OrvelTexture2D> texture(CreateTexture2D(GL_RGBA8, 64, 32));
    EXPECT_THAT(calls(), ElementsAre(call("glBindTexture", GL_TEXTURE_2D, 9),
                                     call("glTexStorage2D", GL_TEXTURE_2D, 1, GL_RGBA8, 64, 32),
                                     call("glBindTexture", GL_TEXTURE_2D, kGamesTexture)));
    texture->SubImage2D(mMemory, 2, 3, 4, 5, 6);
    texture->SubImage2D(mMemory, 2, 3, 4, 5, -1); // all of level 0
    const auto upload = [&](int level, int x, int y, int w, int h) {
        return call("glTexSubImage2D", GL_TEXTURE_2D, level, x, y, w, h, GL_RGBA, GL_UNSIGNED_BYTE, &mMemory[0]);
    };
    EXPECT_THAT(calls(), ElementsAre(upload(2, 3, 4, 5, 6), upload(0, 0, 0, 64, 32)));
    texture->SetInternalFormat(GL_RGBA8);
    EXPECT_THAT(calls(), IsEmpty());
    texture->SetInternalFormat(GL_R8);
    texture->SetMinFilter(GL_NEAREST).SetWrapR(GL_REPEAT).SetSwizzleA(GL_ONE);
    EXPECT_EQ(calls().size(), 4u); // deleted, three parameters
    texture->Abandon();
    texture.reset();
    EXPECT_THAT(calls(), IsEmpty());
}

// Catches an upload through a buffer that is not bound, not unmapped or left bound.
TEST_F(Toolkit, PixelBufferCarriesAnImage) {
    const std::unique_ptr<OrvelPixelBuffer> buffer(CreatePBO(sizeof mMemory, true, GL_STREAM_DRAW));
    EXPECT_THAT(calls(), IsEmpty());
    UpdatePBO(buffer.get(), [](int size, void* memory) { static_cast<char*>(memory)[size - 1] = 'x'; });
    EXPECT_EQ(mMemory[15], 'x');
    const auto bind = [](GLuint name) { return call("glBindBuffer", GL_PIXEL_UNPACK_BUFFER, name); };
    EXPECT_THAT(calls(), ElementsAre(bind(8), call("glBufferData", GL_PIXEL_UNPACK_BUFFER, 16, nullptr, GL_STREAM_DRAW),
                                     bind(kGamesBuffer), bind(8),
                                     call("glMapBufferRange", GL_PIXEL_UNPACK_BUFFER, 0, 16, GL_MAP_WRITE_BIT),
                                     call("glUnmapBuffer", GL_PIXEL_UNPACK_BUFFER), bind(kGamesBuffer)));
    const std::unique_ptr<OrvelTexture2D> texture(CreateTexture2D(GL_RGBA8, 2, 2));
    calls();
    UpdateTextureData(texture.get(), buffer.get());
    EXPECT_THAT(calls(),
                ElementsAre(bind(8), call("glBindTexture", GL_TEXTURE_2D, 9),
                            call("glTexSubImage2D", GL_TEXTURE_2D, 0, 0, 0, 2, 2, GL_RGBA, GL_UNSIGNED_BYTE, nullptr),
                            call("glBindTexture", GL_TEXTURE_2D, kGamesTexture), bind(kGamesBuffer)));
    mMapped = nullptr;
    UpdatePBO(buffer.get(), [](int, void*) { FAIL(); });
    EXPECT_EQ(calls().back(), bind(kGamesBuffer));
}

// Catches GL calls for nothing at all.
TEST_F(Toolkit, NothingComesOfNothing) {
    const std::unique_ptr<OrvelPixelBuffer> empty(CreatePBO(0, true, GL_STREAM_DRAW));
    empty->Bind();
    EXPECT_EQ(empty->Mapbuffer(-1, 0), nullptr);
    UpdatePBO(empty.get(), [](int, void*) { FAIL(); });
    UpdatePBO(nullptr, [](int, void*) { FAIL(); });
    UpdateTextureData(nullptr, empty.get());
    UpdateTextureData(nullptr, mMemory);
    empty->UnBind();
    EXPECT_THAT(calls(), IsEmpty());
}

// Catches pixel-store state of the game that stays changed, or is changed for nothing.
TEST_F(Toolkit, PixelStoreIsTheGamesAgain) {
    {
        const OrvelPixelStoreScope scope(OrvelPixelStoreScope::FROM_MEMORY);
        EXPECT_THAT(calls(), ElementsAre(call("glPixelStorei", GL_UNPACK_ALIGNMENT, 1),
                                         call("glBindBuffer", GL_PIXEL_UNPACK_BUFFER, 0)));
    }
    EXPECT_THAT(calls(), ElementsAre(call("glBindBuffer", GL_PIXEL_UNPACK_BUFFER, kGamesBuffer),
                                     call("glPixelStorei", GL_UNPACK_ALIGNMENT, 4)));
    mAlignment = 1;
    { const OrvelPixelStoreScope scope(OrvelPixelStoreScope::FROM_BUFFER); }
    EXPECT_THAT(calls(), IsEmpty());
}
