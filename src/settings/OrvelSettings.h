// Who the library is running in, and what the system's tuning service wants for it.
#pragma once

#include "app/OrvelProcessorDataBase.h" // upwards, deliberately: the empty configuration is held by value
#include "settings/CurrentPackage.h"
#include "settings/OrvelApplicationType.h"

#include <binder/IBinder.h>
#include <utils/String8.h>

#include <cstdint>
#include <string>
#include <vector>

namespace com::velmor::ravelo {
class OrvelPrefs;
}

namespace android {
struct GameInfo;
}

namespace android::orvel {

/**
 * The one record of the process. Filled once at start-up by init(), and not again while the game draws: hooks read it
 * without a lock. The live getters may be called on any thread.
 */
class OrvelSettings {
public:
    /** What initOrvelPrefs() came to. */
    enum QueryStatus : int32_t {
        QUERY_CONFIGURED = 0,
        QUERY_NO_SERVICE = 2,
        QUERY_CALL_FAILED = 3,
        QUERY_EXCEPTION = 4,
        QUERY_EMPTY_ANSWER = 5, // the service knows the package and wants the library off
    };

    /** Constructed on first use; it knows nothing before init(). */
    static OrvelSettings& getInstance();
    ~OrvelSettings();
    OrvelSettings(const OrvelSettings&) = delete;
    OrvelSettings& operator=(const OrvelSettings&) = delete;

    /**
     * Classifies the process by its name ("/proc/<pid>/cmdline") and, if it is a listed package, asks the tuning
     * service for its configuration and tells the game-information monitor who it is. Failures are logged.
     */
    void init();

    /**
     * Asks the tuning service for this package's configuration; blocks until it answers. On the start-up thread only.
     * @return a QueryStatus; only QUERY_CONFIGURED and QUERY_EMPTY_ANSWER leave preferences behind
     * @throw std::bad_alloc; the preferences are then those of before
     */
    int32_t initOrvelPrefs();

    /** Lets go of the service's binder; the configuration received from it stays. Any thread. */
    void onRemoteServiceDied();

    /** @return the processor configuration of the preferences, or the empty one while there is none */
    app::OrvelProcessorDataBase& getProcessorData();

    /** @return the monitor's live record, not a copy; see GameInfo about reading it */
    const GameInfo* getGameInfo() const;
    int32_t getImageQuality() const;
    int32_t getSceneId() const;
    int32_t getVrsLevel() const;
    uint8_t getSmallWindowSig() const;
    int32_t getFilterType() const;
    int32_t getLutStrength() const;
    int32_t getDarkEdge() const;

    /** Splits text at every character that occurs in delimiters; empty pieces vanish. */
    static std::vector<std::string> split(const std::string& text, const std::string& delimiters);

    const int32_t mPid;
    String8 mPackageName; // the process name; later what the application framework answered, even if that is empty
    bool mPackageNameResolved = false; // the framework has answered

    // Private in between: the order of the members is part of the record.
private:
    sp<IBinder> mRemoteBinder; // written here and by the binder thread that brings the death notice, under a mutex

public:
    com::velmor::ravelo::OrvelPrefs* mPrefs = nullptr; // owned; null while the service has not answered
    OrvelApplicationType mApplicationType = APP_TYPE_NONE;

private:
    OrvelSettings();
    void replaceRemoteBinder(const sp<IBinder>& binder);

    app::OrvelProcessorDataBase mProcessorData; // stays empty
};

} // namespace android::orvel
