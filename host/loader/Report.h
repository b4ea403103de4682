// The report that a program leaves about itself; see the layout. Without a system root the report goes nowhere.
#pragma once

#include "report/ReportLayout.h"

#include "Entries.h"

#include <string>
#include <string_view>

namespace android::rig {

/** Maps the file of this process; called once, at the start. */
void openReport();

/** @return whether there is a file, so that gathering what is costly to gather is worth it */
bool isReporting();

/** Adds to a counter, from any thread. */
void count(Counter counter, uint64_t amount = 1);

/** @return what was counted so far, by any thread */
uint64_t countOf(Counter counter);

void reportValue(uint32_t ReportLayout::*field, uint32_t value);

/** Notes what the library's start came to: enabled or why not, which entries it replaced. */
void reportStart(const egl_connection_t& cnx, const egl_t& eglBefore, const platform_impl_t& platformBefore,
                 bool enabled);

/** Notes who draws; the first call counts. The calling thread has a context. */
void reportRenderer(const GlTable& driver);

/** Writes a text beside the report: orvel/<name>.<pid><suffix>. */
void writeBesideReport(const std::string& name, const std::string& suffix, std::string_view text);

/** Adds a text to the end of such a file. */
void appendBesideReport(const std::string& name, const std::string& suffix, std::string_view text);

/** The file itself. */
ReportLayout& report();

/** Copies a text into a field of size bytes; one that is too long is cut. */
void copyText(char* to, size_t size, std::string_view text);

template <size_t N>
void reportText(char (ReportLayout::*field)[N], std::string_view text) {
    copyText(report().*field, N, text);
}

} // namespace android::rig
