// A game whose filters are configured, its images, and a player who chooses among the filters.
#pragma once

#include "TestRoot.h"
#include "app/OrvelApplicationUtils.h"
#include "app/OrvelEffectModuleData.h"
#include "app/OrvelProcessorDataBase.h"
#include "next/effects/OrvelVisualEffectManager.h"
#include "settings/GameInfoMonitor.h"
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"

#include <json/value.h>

#include <png.h>
#include <string>
#include <vector>

/** Once per process. */
class EffectGame {
public:
    EffectGame(android::OrvelApplicationType type, const char* binary, const char* types) {
        Json::Value json;
        json["effect_Binary"] = binary;
        json["effect_Types"] = types;
        auto& settings = android::orvel::OrvelSettings::getInstance();
        settings.mApplicationType = type;
        settings.mPrefs = new com::velmor::ravelo::OrvelPrefs;
        android::orvel::app::ReleaseProcessorData(settings.mPrefs->mProcessorData);
        settings.mPrefs->mProcessorData = new Configuration(json);
        android::GameInfoMonitor::getInstance().setPackageName("game");
    }

    static void choose(int type, int strength = 100, int darkEdge = 0) {
        android::GameInfoMonitor::getInstance().parseFilterConfig("game", type, strength, darkEdge);
    }
    void writeResource(const std::string& name, const std::string& content) const {
        mRoot.write("/vendor/odm/etc/game/effect/" + name, content);
    }
    /** Frames until everything is loaded and the player's choice is known; period 1 of effect_Binary. */
    static void load(android::orvel::next::OrvelVisualEffectManager& manager) {
        manager.EnableLoadResource();
        for (int frame = 0; frame < 20; ++frame) {
            manager.FrameEnd();
        }
    }

private:
    struct Configuration : android::orvel::app::OrvelProcessorDataBase {
        explicit Configuration(const Json::Value& json) {
            moduleData[2] = new android::orvel::app::module::OrvelEffectModuleData(json);
        }
    };

    const TestRoot mRoot;
};

/** @return a PNG file; texels row by row, nothing for zeros */
inline std::string pngFile(uint32_t width, uint32_t height, int colourType = PNG_COLOR_TYPE_RGB, int depth = 8,
                           int interlace = PNG_INTERLACE_NONE, std::vector<uint8_t> texels = {}) {
    std::string file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &file,
        [](png_structp to, png_bytep data, png_size_t size) {
            static_cast<std::string*>(png_get_io_ptr(to))->append(reinterpret_cast<const char*>(data), size);
        },
        nullptr);
    png_set_IHDR(png, info, width, height, depth, colourType, interlace, PNG_COMPRESSION_TYPE_BASE,
                 PNG_FILTER_TYPE_BASE);
    const png_color black{};
    if (colourType == PNG_COLOR_TYPE_PALETTE) {
        png_set_PLTE(png, info, &black, 1);
    }
    png_write_info(png, info);
    const size_t rowBytes = png_get_rowbytes(png, info);
    texels.resize(rowBytes * height);
    for (int pass = png_set_interlace_handling(png); pass > 0; --pass) {
        for (uint32_t row = 0; row < height; ++row) {
            png_write_row(png, &texels[row * rowBytes]);
        }
    }
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return file;
}
