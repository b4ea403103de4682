// The games that are played: package, configuration with everything on, and whether arguments arrive as they were given.
#pragma once

#define ORVEL_FUZZ_LEGACY                                                                                              \
    R"({"configs": {"drr_enable": "1", "drr_update_interval": "10", "drr_base_size": "320x180",
        "drr_available_size": "320x180;240x136", "drr_illegal_size": "1x1", "orvel_sr_config": "320x180;480x270",
        "dfi_interval": "50", "ys_scene_recognize": "1", "ys_transfer_recognize": "1", "ys_launch_recognize": "1",
        "hkrpg_scene_recognize": "1", "hp_transfer_recognize": "1", "shader_replace_config": "1",
        "tex_param_anisotropy": "2", "max_resolution": "320x180", "tex_size": "400x225", "shader_rate": "3"}})"

#if ORVEL_FUZZ_GAME == 1
#define ORVEL_FUZZ_PACKAGE "com.tencent.tmgp.sgame"
#define ORVEL_FUZZ_CONFIGURATION                                                                                       \
    R"({"configs": {"xrender_BaseInfo": "262147", "dynamic_dfi_interval": "1",
        "xrender_PayloadData": "lobby:lobby_.*;pick_hero:hero_stage;pick_hero-UI:hero_list_.*;battle-UI:battle_hud#Hidden/.*#2",
        "effect_Binary": "0;1;0;1;hero_skin_.*;result_.*", "effect_Types": "1;2;4;5;7;8",
        "vrs_LabelInfo": "ground#scene_.*;fbo#.*Main_color.*", "vrs_MotionDetection": "1",
        "vrs_LabelLevel": "1#22:ground$22,44,22,44;2#44:ground$22,44,44,22,44,44"}})"
#define ORVEL_FUZZ_EXACT 1
#elif ORVEL_FUZZ_GAME == 2
#define ORVEL_FUZZ_PACKAGE "com.tencent.tmgp.pubgmhd"
#define ORVEL_FUZZ_CONFIGURATION                                                                                       \
    R"({"configs": {"xrender_BaseInfo": "262147", "effect_Binary": "0;1;0;1", "effect_Types": "1;2;3;6;7",
        "tex_param_anisotropy": "2"}})"
#define ORVEL_FUZZ_EXACT 0 // glTexParameteri is changed
#elif ORVEL_FUZZ_GAME == 3
#define ORVEL_FUZZ_PACKAGE "com.miHoYo.Yuanshen"
#define ORVEL_FUZZ_CONFIGURATION ORVEL_FUZZ_LEGACY
#define ORVEL_FUZZ_EXACT 0
#elif ORVEL_FUZZ_GAME == 4
#define ORVEL_FUZZ_PACKAGE "com.miHoYo.hkrpg"
#define ORVEL_FUZZ_CONFIGURATION ORVEL_FUZZ_LEGACY
#define ORVEL_FUZZ_EXACT 0
#elif ORVEL_FUZZ_GAME == 5
#define ORVEL_FUZZ_PACKAGE "com.netease.harrypotter"
#define ORVEL_FUZZ_CONFIGURATION ORVEL_FUZZ_LEGACY
#define ORVEL_FUZZ_EXACT 0
#else
#define ORVEL_FUZZ_PACKAGE "tv.danmaku.bili"
#define ORVEL_FUZZ_CONFIGURATION R"({"configs": {"xrender_BaseInfo": "262144"}})"
#define ORVEL_FUZZ_EXACT 1
#endif
