// One game for each way in which the library serves a process, with every feature of it configured.
#pragma once

#include <ostream>
#include <string>

struct EveryGame {
    const char* name;
    const char* package;
    const char* configuration;
    bool isExact; // arguments reach the driver as the game gave them

    /**
     * Repeating a frame leaves the framebuffer that it reads and the errors of its copy, and knows one drawing
     * context.
     */
    std::string withoutRepetition() const {
        std::string text = configuration;
        if (const size_t key = text.find("dfi_interval"); key != std::string::npos) {
            text[key] = '-';
        }
        return text;
    }
};

inline constexpr char kEveryLegacyFeature[] =
    R"({"configs": {"drr_enable": "1", "drr_update_interval": "10", "drr_base_size": "320x180",
        "drr_available_size": "320x180;240x136", "drr_illegal_size": "1x1", "orvel_sr_config": "320x180;480x270",
        "dfi_interval": "50", "ys_scene_recognize": "1", "ys_transfer_recognize": "1", "ys_launch_recognize": "1",
        "hkrpg_scene_recognize": "1", "hp_transfer_recognize": "1", "shader_replace_config": "1",
        "tex_param_anisotropy": "2", "max_resolution": "320x180", "tex_size": "400x225", "shader_rate": "3"}})";

inline void PrintTo(const EveryGame& game, std::ostream* out) { *out << game.name; }

inline constexpr EveryGame kEveryGame[] = {
    {"sgame", "com.tencent.tmgp.sgame",
     R"({"configs": {"xrender_BaseInfo": "262147", "dynamic_dfi_interval": "1",
        "xrender_PayloadData":
            "lobby:lobby_.*;pick_hero:hero_stage;pick_hero-UI:hero_list_.*;battle-UI:battle_hud#Hidden/.*#2",
        "effect_Binary": "0;1;0;1;hero_skin_.*;result_.*", "effect_Types": "1;2;4;5;7;8",
        "vrs_LabelInfo": "ground#scene_.*;fbo#.*Main_color.*", "vrs_MotionDetection": "1",
        "vrs_LabelLevel": "1#22:ground$22,44,22,44;2#44:ground$22,44,44,22,44,44"}})",
     true},
    {"pubg", "com.tencent.tmgp.pubgmhd",
     R"({"configs": {"xrender_BaseInfo": "262147", "effect_Binary": "0;1;0;1", "effect_Types": "1;2;3;6;7",
        "tex_param_anisotropy": "2"}})",
     false},
    {"yuanshen", "com.miHoYo.Yuanshen", kEveryLegacyFeature, false},
    {"hkrpg", "com.miHoYo.hkrpg", kEveryLegacyFeature, false},
    {"harrypotter", "com.netease.harrypotter", kEveryLegacyFeature, false},
    {"video", "tv.danmaku.bili", R"({"configs": {"xrender_BaseInfo": "262144"}})", true},
};
