// The text of a GL object's label, as glLabelObjectEXT brings it.
#pragma once

#include <GLES3/gl32.h>

#include <cstring>
#include <string_view>

namespace android::orvel {

/**
 * @param length of label, which may end before it with a zero; 0 or less: label ends with a zero
 * @return empty for a null label
 */
inline std::string_view labelText(GLsizei length, const GLchar* label) {
    if (!label) {
        return {};
    }
    return {label, length > 0 ? strnlen(label, static_cast<size_t>(length)) : std::strlen(label)};
}

} // namespace android::orvel
