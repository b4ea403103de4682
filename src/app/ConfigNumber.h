// Numbers in the service's configuration without which it is no use.
#pragma once

#include <stdexcept>
#include <string>

namespace android::orvel::app {

/**
 * Runs a conversion of the standard library, such as std::stoi.
 * @throw std::invalid_argument, std::out_of_range as the conversion does, but naming the key and its text
 */
template <typename Convert>
auto configNumber(const char* key, const std::string& text, Convert convert) {
    const auto problem = [&](const char* what) {
        return '"' + std::string(key) + "\" is " + what + ": \"" + text + '"';
    };
    try {
        return convert(text);
    } catch (const std::out_of_range&) {
        throw std::out_of_range(problem("out of range"));
    } catch (const std::invalid_argument&) {
        throw std::invalid_argument(problem("no number"));
    }
}

} // namespace android::orvel::app
