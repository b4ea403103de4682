// Writes the colour filters' programs as binaries of the driver at hand, into files that the library can load.
// usage: orvel-pack-effects DIR
#include "MesaContext.h"
#include "next/effects/OrvelBrownEffect.h"
#include "next/effects/OrvelGreenEffect.h"
#include "next/effects/OrvelLutEffect.h"

#include <GLES3/gl32.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

using namespace android::orvel::next;

namespace {

void appendNumber(std::string& to, uint32_t number) { // the lowest byte first
    for (int shift = 0; shift < 32; shift += 8) {
        to += static_cast<char>(number >> shift);
    }
}

/** @return the content of the effect's file: bytes of the binary, its format, the binary; empty on failure */
std::string packed(GLuint program) {
    GLint length = 0;
    glGetProgramiv(program, GL_PROGRAM_BINARY_LENGTH, &length);
    std::string binary(static_cast<size_t>(length), '\0');
    GLenum format = 0;
    GLsizei written = 0;
    glGetProgramBinary(program, length, &written, &format, binary.data());
    if (written <= 0) {
        return "";
    }
    std::string file;
    appendNumber(file, static_cast<uint32_t>(written));
    appendNumber(file, format);
    return file + binary.substr(0, static_cast<size_t>(written));
}

template <typename Effect>
bool pack(const std::filesystem::path& path) {
    Effect effect(/*binary=*/false);
    effect.Init("");
    if (!effect.IsValid()) {
        std::fprintf(stderr, "%s: the driver does not compile the effect; has it GL_EXT_shader_framebuffer_fetch?\n",
                     path.c_str());
        return false;
    }
    const std::string file = packed(effect.GetProgram().GetProgram());
    if (file.empty()) {
        std::fprintf(stderr, "%s: the driver gives no binary\n", path.c_str());
        return false;
    }
    // Written beside: an older file stays until the new one is whole.
    const std::filesystem::path beside = path.string() + ".new";
    std::error_code error;
    if (std::ofstream stream(beside, std::ios::binary); stream << file && stream.flush()) {
        std::filesystem::rename(beside, path, error);
    } else {
        error = std::make_error_code(std::errc::io_error);
    }
    if (error) {
        std::fprintf(stderr, "%s: cannot write\n", path.c_str());
        std::filesystem::remove(beside, error);
        return false;
    }
    std::printf("%s: %zu bytes\n", path.c_str(), file.size());
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: orvel-pack-effects DIR\n");
        return 2;
    }
    const std::filesystem::path folder(argv[1]);
    std::error_code error;
    std::filesystem::create_directories(folder, error); // a failure shows when the files are written
    const MesaContext context;
    GLint formats = 0;
    glGetIntegerv(GL_NUM_PROGRAM_BINARY_FORMATS, &formats);
    if (formats == 0) {
        std::fprintf(stderr, "the driver knows no format of program binaries\n");
        return 1;
    }
    const bool green = pack<OrvelGreenEffect>(folder / "nightgreen.bin");
    const bool brown = pack<OrvelBrownEffect>(folder / "oldbrown.bin");
    const bool lut = pack<OrvelLutEffect>(folder / "lut.bin");
    return green && brown && lut ? 0 : 1;
}
