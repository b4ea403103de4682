// A driver that draws nothing: every entry records its name and arguments, answers are scripted, entries can be made
// null. Made from the same lists as the library's tables, so a new entry needs nothing here.
#pragma once

#include <EGL/egldefs.h>

#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

using Calls = std::vector<std::string>;

namespace recording {

std::string formatPointer(const void* pointer);

template <typename T>
std::string format(T value) {
    if constexpr (std::is_pointer_v<T>) {
        return formatPointer(reinterpret_cast<const void*>(value));
    } else {
        return std::to_string(value);
    }
}

inline std::string format(std::nullptr_t) { return formatPointer(nullptr); }

struct AnswerBase {
    virtual ~AnswerBase() = default;
};

template <typename R, typename... Args>
struct Answer : AnswerBase {
    std::function<R(Args...)> function;
};

/** Which of the driver's tables an entry stands in; the record shows it for all but GL. */
enum class TableKind { GL, EGL, PLATFORM };

std::string text(const std::string& name, std::initializer_list<std::string> args);
void note(TableKind table, const char* name, std::initializer_list<std::string> args);
std::unique_ptr<AnswerBase>& answerAt(TableKind table, size_t offset);

template <typename T>
constexpr TableKind kTableKind = std::is_same_v<T, android::egl_t>             ? TableKind::EGL
                                 : std::is_same_v<T, android::platform_impl_t> ? TableKind::PLATFORM
                                                                               : TableKind::GL;

} // namespace recording

/** One call as it stands in the record: call("glBindTexture", GL_TEXTURE_2D, 7). */
template <typename... Args>
std::string call(const std::string& name, Args... args) {
    return recording::text(name, {recording::format(args)...});
}

/** @return how many entries of two tables differ */
template <typename Table>
size_t differences(const Table& before, const Table& after) {
    const auto* a = reinterpret_cast<void* const*>(&before);
    const auto* b = reinterpret_cast<void* const*>(&after);
    size_t count = 0;
    for (size_t i = 0; i < sizeof(Table) / sizeof(void*); ++i) {
        count += a[i] != b[i];
    }
    return count;
}

/**
 * One at a time. Its constructor offers a connection whose tables record; installed() also makes it the library's
 * saved driver, which the destructor clears again.
 */
class RecordingDriver {
public:
    RecordingDriver();
    ~RecordingDriver();

    /** A driver that the library's saved tables (next::gl and so on) already hold. */
    static std::unique_ptr<RecordingDriver> installed();

    android::egl_connection_t* connection() { return &mConnection; }
    android::gl_hooks_t& gles2() { return mGles2; }

    /** What was called since the last forget(), in order; platform and egl entries carry that prefix. */
    Calls calls() const;
    /** The same, but for those that begin like one of these. */
    Calls callsWithout(std::initializer_list<const char*> beginnings) const;
    /** Only those that begin like one of these. */
    Calls callsOf(std::initializer_list<const char*> beginnings) const;
    void forget();

    /** Lets one entry answer: answer<&egl_t::eglGetProcAddress>([](const char*) { ... }). */
    template <auto Slot, typename Function>
    void answer(Function function) {
        setAnswer(Slot, std::move(function));
    }

private:
    template <typename Table, typename R, typename... Args, typename Function>
    static void setAnswer(R (*Table::*slot)(Args...), Function function) {
        Table table{};
        const auto offset = reinterpret_cast<char*>(&(table.*slot)) - reinterpret_cast<char*>(&table);
        auto scripted = std::make_unique<recording::Answer<R, Args...>>();
        scripted->function = std::move(function);
        recording::answerAt(recording::kTableKind<Table>, static_cast<size_t>(offset)) = std::move(scripted);
    }

    android::gl_hooks_t mGles2;
    android::egl_connection_t mConnection;
};
