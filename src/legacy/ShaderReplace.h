// Lowers the precision of the game's shaders in their source text: every "mediump" becomes "lowp".
#pragma once

#include <vector>

namespace android {

/**
 * Edits the first source string of a glShaderSource call when "shader_replace_config" is 1.
 *
 * Deliberate: the text is edited in the game's own memory, constness ignored; count and lengths are not looked at, so
 * the text must end with a zero byte. Text in memory that cannot be written stays as it is.
 */
void updateShaderCode(unsigned shader, int count, const char* const* strings);

/**
 * Replaces every occurrence of from in place. No word boundaries: a longer identifier that contains from changes too.
 * Nothing happens for a null argument, a source shorter than from, or, unless the text grows, a source not longer
 * than to.
 * @param source zero-terminated; where to is longer than from, the caller owns room for the longer text
 */
void replaceShader(char* source, const char* from, const char* to);

/**
 * Finds occurrences of sub from left to right; they never overlap.
 * @param positions receives, appended, the index of the first character of each
 * @return how many this call found; 0 for a null or empty argument
 */
int findNumberFirst(const char* str, const char* sub, std::vector<int>& positions);

/** As findNumberFirst, but appends the index of each one's last character and returns the size of positions. */
int findNumberLast(const char* str, const char* sub, std::vector<int>& positions);

} // namespace android
