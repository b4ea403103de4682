#include "Ui.h"

#include "Shaders.h"

#include <cstddef>
#include <cstdio>

namespace sample {

namespace {

constexpr size_t kMostBoxes = 2000;

// Colours as bytes lie in memory on a little-endian machine: alpha, blue, green, red.
constexpr uint32_t kWhite = 0xffffffff;
constexpr uint32_t kGold = 0xff4fc8f5;
constexpr uint32_t kGreen = 0xff5fd36a;
constexpr uint32_t kBlue = 0xffe0a04a;
constexpr uint32_t kRed = 0xff4a4ae0;
constexpr uint32_t kShade = 0xa0201810;

/** Three columns by five rows, a digit of eight a row from the top, the highest bit at the left. */
int glyph(char letter) {
    static constexpr int kDigits[] = {075557, 026227, 071747, 071717, 055711, 074717, 074757, 071122, 075757, 075717};
    static constexpr int kLetters[] = {025755, 065656, 034443, 065556, 074647, 074644, 034553, 055755, 072227,
                                       011152, 055655, 044447, 057755, 065555, 025552, 065644, 025563, 065655,
                                       034216, 072222, 055557, 055552, 055775, 055255, 055222, 071247};
    if (letter >= '0' && letter <= '9') {
        return kDigits[letter - '0'];
    }
    if (letter >= 'A' && letter <= 'Z') {
        return kLetters[letter - 'A'];
    }
    if (letter >= 'a' && letter <= 'z') {
        return kLetters[letter - 'a'];
    }
    return 0;
}

} // namespace

Ui::Ui(Size window, std::string title)
    : mWindow(window),
      mTitle(std::move(title)),
      mProgram("UI", shaders::uiVertex(), shaders::uiFragment()) {
    mCorners.reserve(kMostBoxes * 4);
    std::vector<GLushort> indices;
    for (size_t box = 0; box < kMostBoxes; ++box) {
        for (const size_t corner : {0, 1, 2, 2, 1, 3}) {
            indices.push_back(static_cast<GLushort>(box * 4 + corner));
        }
    }
    GLuint buffers[2];
    glGenVertexArrays(1, &mVertexArray);
    glGenBuffers(2, buffers);
    mVertices = buffers[0];
    glBindVertexArray(mVertexArray);
    glBindBuffer(GL_ARRAY_BUFFER, mVertices);
    glBufferData(GL_ARRAY_BUFFER, kMostBoxes * 4 * sizeof(Corner), nullptr, GL_DYNAMIC_DRAW);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers[1]);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(indices.size() * sizeof(GLushort)), indices.data(),
                 GL_STATIC_DRAW);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, sizeof(Corner), nullptr);
    glEnableVertexAttribArray(1);
    glVertexAttribPointer(1, 4, GL_UNSIGNED_BYTE, GL_TRUE, sizeof(Corner),
                          reinterpret_cast<const void*>(offsetof(Corner, colour))); // NOLINT: an offset
    glBindVertexArray(0);
}

void Ui::addBox(int x, int y, int width, int height, uint32_t colour) {
    if (mCorners.size() == kMostBoxes * 4) {
        return;
    }
    for (const int corner : {0, 1, 2, 3}) {
        mCorners.push_back({static_cast<float>(corner % 2 == 0 ? x : x + width),
                            static_cast<float>(corner < 2 ? y : y + height), colour});
    }
}

void Ui::addText(int x, int y, int scale, std::string_view text, uint32_t colour) {
    for (const char letter : text) {
        for (int bit = 0; bit < 15; ++bit) {
            if (glyph(letter) >> (14 - bit) & 1) {
                addBox(x + bit % 3 * scale, y + bit / 3 * scale, scale, scale, colour);
            }
        }
        x += 4 * scale;
    }
}

void Ui::addFrame(int x, int y, int width, int height, uint32_t colour) {
    addBox(x, y, width, 1, colour);
    addBox(x, y + height - 1, width, 1, colour);
    addBox(x, y, 1, height, colour);
    addBox(x + width - 1, y, 1, height, colour);
}

void Ui::addMap(int frame) {
    constexpr int kSide = 120;
    constexpr int kCell = 12;
    const int left = mWindow.width - kSide - 16;
    addBox(left, 16, kSide, kSide, kShade);
    for (int cell = 0; cell < 100; ++cell) {
        if ((cell / 10 + cell) % 2 == 0) {
            addBox(left + cell % 10 * kCell, 16 + cell / 10 * kCell, kCell, kCell, 0x40ffffff);
        }
    }
    addFrame(left - 2, 14, kSide + 4, kSide + 4, kGold);
    addBox(left + 8 + frame % 100, 70, 7, 7, kRed);
    // One pixel on, one pixel off: grey wherever the window is not drawn pixel by pixel.
    for (int line = 0; line < 60; ++line) {
        addBox(left + line * 2, 144, 1, 8, kWhite);
    }
}

void Ui::draw(int frame) {
    mCorners.clear();
    addText(24, 20, 4, mTitle, kGold);
    char text[32];
    std::snprintf(text, sizeof(text), "FRAME %04d", frame);
    addText(24, 50, 2, text, kWhite);
    addMap(frame);
    const int low = mWindow.height - 56;
    addBox(16, low - 8, 336, 48, kShade);
    addFrame(16, low - 8, 336, 48, kGold);
    addText(26, low, 3, "HP", kWhite);
    addBox(60, low + 1, 280, 13, 0xff202020);
    addBox(61, low + 2, 278 - frame % 90, 11, kGreen);
    addText(26, low + 20, 3, "MP", kWhite);
    addBox(60, low + 21, 280, 13, 0xff202020);
    addBox(61, low + 22, 140 + frame % 120, 11, kBlue);
    for (int skill = 0; skill < 4; ++skill) {
        const int x = mWindow.width - 280 + skill * 66;
        addBox(x, low - 16, 56, 56, kShade);
        addFrame(x, low - 16, 56, 56, kWhite);
        const char key[] = {"QEXR"[skill]};
        addText(x + 16, low - 8, 8, {key, 1}, skill == frame / 30 % 4 ? kGold : kWhite);
    }

    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    mProgram.use();
    mProgram.set("uWindow", Vec3{static_cast<float>(mWindow.width), static_cast<float>(mWindow.height), 0});
    glBindVertexArray(mVertexArray);
    glBindBuffer(GL_ARRAY_BUFFER, mVertices);
    glBufferSubData(GL_ARRAY_BUFFER, 0, static_cast<GLsizeiptr>(mCorners.size() * sizeof(Corner)), mCorners.data());
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(mCorners.size() / 4 * 6), GL_UNSIGNED_SHORT, nullptr);
    glDisable(GL_BLEND);
}

} // namespace sample
