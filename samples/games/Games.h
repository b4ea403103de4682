// The games there are: one function and one file each, and a row of the list in Game.cpp.
#pragma once

#include "Game.h"

namespace sample {

std::unique_ptr<Game> makeYuanshen(const Options& options);
std::unique_ptr<Game> makeHkrpg(const Options& options);
std::unique_ptr<Game> makeHarryPotter(const Options& options);
std::unique_ptr<Game> makeSGame(const Options& options);
std::unique_ptr<Game> makePubg(const Options& options);
std::unique_ptr<Game> makeVideo(const Options& options);

} // namespace sample
