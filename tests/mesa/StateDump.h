// The state of the current GLES 3.2 context, asked from the driver and not from the library's tables: what a guest in
// it must leave as it was.
#pragma once

#include <map>
#include <string>

/**
 * Every binding of every unit, and whatever else a draw depends on; of the objects themselves the parameters of the
 * textures and the arrays of the vertex array that are bound. Taking one clears pending errors, which are part of it.
 */
class StateDump {
public:
    static StateDump take();
    /** @return what is not as in the other one, a line each */
    std::string differenceTo(const StateDump& before) const;
    /** @return everything, a line each */
    std::string text() const;

private:
    std::map<std::string, std::string> mValues; // by the names of the header, with an index where there are many
};

/** Expects the context to be as it was; on failure shows what is not. */
#define EXPECT_SAME_STATE(before) EXPECT_EQ(StateDump::take().differenceTo(before), "")
