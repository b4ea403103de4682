#include "legacy/ShaderReplace.h"

#include "base/OrvelGuard.h"
#include "base/OrvelLog.h"
#include "settings/orvel_modify_params.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>
#include <sys/uio.h>
#include <unistd.h>

namespace android {

namespace {

constexpr int kReplacePrecision = 1; // the one value of "shader_replace_config" that has a meaning

/** Appends the index of each occurrence's character at offset. */
int findOccurrences(const char* str, const char* sub, size_t offset, std::vector<int>& positions) {
    if (!str || !sub || !*sub) {
        return 0;
    }
    const std::string_view text(str);
    const std::string_view pattern(sub);
    int found = 0;
    for (size_t at = text.find(pattern); at != text.npos; at = text.find(pattern, at + pattern.size())) {
        positions.push_back(static_cast<int>(at + offset));
        ++found;
    }
    return found;
}

ssize_t tryWrite(char* target, const std::string& text, size_t length) {
    const iovec from = {const_cast<char*>(text.data()), length};
    const iovec to = {target, length};
    return process_vm_writev(getpid(), &from, 1, &to, 1, 0);
}

/**
 * Writes text and its terminator over old. Programs keep shaders in string literals, and storing into one would be
 * the end of the game: the kernel is asked to write, since it answers with an error where a store would fault.
 */
void overwrite(char* target, const std::string& old, const std::string& text) {
    const size_t length = text.size() + 1;
    const ssize_t written = tryWrite(target, text, length);
    if (written == static_cast<ssize_t>(length)) {
        return;
    }
    const int error = written < 0 ? errno : EFAULT;
    if (written > 0) { // the text runs into memory that is not writable: take the first half back
        tryWrite(target, old, static_cast<size_t>(written));
    }
    static std::atomic<bool> said{false};
    if (!said.exchange(true)) {
        // Constant text is usual; a kernel that refuses the call altogether is not.
        ORVEL_LOG(error == EFAULT ? ANDROID_LOG_DEBUG : ANDROID_LOG_ERROR,
                  "SHADER_REPLACE shader text at %p cannot be written (%s), left as it is", static_cast<void*>(target),
                  strerror(error));
    }
}

/** Copies old front to back; the text gets shorter or keeps its length. */
std::string shrink(const std::string& old, std::string_view from, std::string_view to,
                   const std::vector<int>& firstCharacters) {
    std::string text;
    text.reserve(old.size());
    size_t read = 0;
    for (const int first : firstCharacters) {
        text.append(old, read, static_cast<size_t>(first) - read).append(to);
        read = static_cast<size_t>(first) + from.size();
    }
    return text.append(old, read);
}

/** Copies old back to front into the longer text. */
std::string grow(const std::string& old, std::string_view from, std::string_view to,
                 const std::vector<int>& lastCharacters) {
    std::string text(old.size() + lastCharacters.size() * (to.size() - from.size()), '\0');
    size_t read = old.size();
    size_t write = text.size();
    for (auto last = lastCharacters.rbegin(); last != lastCharacters.rend(); ++last) {
        const size_t behind = static_cast<size_t>(*last) + 1;
        write -= read - behind;
        text.replace(write, read - behind, old, behind, read - behind);
        write -= to.size();
        text.replace(write, to.size(), to);
        read = behind - from.size();
    }
    return text.replace(0, read, old, 0, read);
}

} // namespace

int findNumberFirst(const char* str, const char* sub, std::vector<int>& positions) {
    return findOccurrences(str, sub, 0, positions);
}

int findNumberLast(const char* str, const char* sub, std::vector<int>& positions) {
    if (!str || !sub || !*sub || strlen(str) < strlen(sub)) {
        return 0;
    }
    findOccurrences(str, sub, strlen(sub) - 1, positions);
    return static_cast<int>(positions.size());
}

void replaceShader(char* source, const char* from, const char* to) {
    if (!source || !from || !to || strlen(source) < strlen(from)) {
        return;
    }
    std::vector<int> positions;
    if (strlen(from) < strlen(to)) {
        if (findNumberLast(source, from, positions) > 0) {
            const std::string old(source);
            overwrite(source, old, grow(old, from, to, positions));
        }
    } else if (strlen(source) > strlen(to)) {
        if (findNumberFirst(source, from, positions) > 0) {
            const std::string old(source);
            overwrite(source, old, shrink(old, from, to, positions));
        }
    }
}

void updateShaderCode(unsigned, int, const char* const* strings) {
    if (mShaderReplaceValue != kReplacePrecision) {
        return;
    }
    // Without memory the shader stays as the game wrote it.
    orvel::guarded("SHADER_REPLACE", [strings] { replaceShader(const_cast<char*>(strings[0]), "mediump", "lowp"); });
    ORVEL_LOGD("SHADER_REPLACE updateShaderCode: replaceShader success!");
}

} // namespace android
