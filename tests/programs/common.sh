# Shared by the program tests: a scratch folder, the launcher, a display that needs no screen.
set -u
: "${ORVEL:?the launcher}"
scratch=$(mktemp -d)
failed=0
display=

cleanup() {
    [ -z "$display" ] || kill "$display" 2>/dev/null
    rm -rf "$scratch"
}
trap cleanup EXIT

fail() {
    echo "FAILED: $*"
    failed=1
}

start_display() {
    # -noreset: the server must not start over when the last client of several leaves
    Xvfb -displayfd 3 -screen 0 1280x720x24 -noreset -nolisten tcp 3>"$scratch/display" 2>"$scratch/xvfb.log" &
    display=$!
    for _ in $(seq 100); do
        [ ! -s "$scratch/display" ] || break
        sleep 0.1
    done
    [ -s "$scratch/display" ] || { cat "$scratch/xvfb.log"; echo "FAILED: no display"; exit 1; }
    DISPLAY=:$(cat "$scratch/display")
    export DISPLAY
}

replace_config() {
    echo '{"configs": {"shader_replace_config": "1"}}' >"$scratch/replace.json"
    echo "$scratch/replace.json"
}

# Dynamic resolution on, for sizes that no program here uses.
dynamic_config() {
    cat >"$scratch/dynamic.json" <<'JSON'
{"configs": {"drr_enable": "1", "drr_base_size": "1111x777", "drr_available_size": "555x333", "drr_illegal_size": "1x1"}}
JSON
    echo "$scratch/dynamic.json"
}

# SGame's filter and shading rates, for labels that no program here has.
sgame_config() {
    cat >"$scratch/sgame.json" <<'JSON'
{"configs": {"xrender_BaseInfo": "3", "xrender_PayloadData": "lobby:lobby_.*;battle-UI:battle_.*#Hidden/.*Clear#5",
    "effect_Binary": "0;0;0;10", "effect_Types": "1;2;4;5;7;8", "vrs_LabelInfo": "ground#scene_.*",
    "vrs_LabelLevel": "1#22:ground$22,44,22,44;2#44:ground$22,44,44,22,44,44"}}
JSON
    echo "$scratch/sgame.json"
}
