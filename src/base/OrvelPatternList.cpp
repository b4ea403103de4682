#include "base/OrvelPatternList.h"

#include "base/OrvelParse.h"

#include <algorithm>
#include <utility>

namespace android::orvel {

std::vector<std::string> OrvelPatternList::split(const std::string& text) {
    std::vector<std::string> distinct;
    for (std::string& pattern : splitText(text, "|")) {
        if (std::find(distinct.begin(), distinct.end(), pattern) == distinct.end()) {
            distinct.push_back(std::move(pattern));
        }
    }
    return distinct;
}

void OrvelPatternList::append(const std::vector<std::string>& patterns) {
    for (const std::string& pattern : patterns) {
        mPatterns.emplace_back(pattern);
    }
}

int OrvelPatternList::find(std::string_view text) const {
    const auto found = std::find_if(mPatterns.begin(), mPatterns.end(),
                                    [text](const OrvelPattern& pattern) { return pattern.matches(text); });
    return found == mPatterns.end() ? kNone : static_cast<int>(found - mPatterns.begin());
}

} // namespace android::orvel
