#include "Library.h"

#include "Loader.h"
#include "LogFile.h"
#include "Report.h"

#include "DesktopRoot.h"

#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

namespace android::rig {

constinit Library gLibrary{};

namespace {

// Whichever process of a program opens EGL is the game: it reads who it is from its command line under the root.
void writeIdentity() {
    const std::string folder = desktop::underRoot("/proc/" + std::to_string(getpid()));
    std::string identity;
    if (const char* package = std::getenv("ORVEL_PACKAGE"); package && *package) {
        identity.assign(package, std::strlen(package) + 1);
    } else {
        std::ifstream own("/proc/self/cmdline", std::ios::binary);
        identity.assign(std::istreambuf_iterator<char>(own), {});
    }
    reportText(&ReportLayout::package, identity.c_str());
    if (folder.empty()) {
        return;
    }
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    std::ofstream file(folder + "/cmdline", std::ios::binary | std::ios::trunc);
    if (!file.write(identity.data(), static_cast<std::streamsize>(identity.size()))) {
        RIG_LOGE("cannot write %s/cmdline", folder.c_str());
    }
}

std::string libraryPath() {
    if (const char* path = std::getenv("ORVEL_LIBRARY"); path && *path) {
        return path;
    }
    Dl_info self{};
    dladdr(reinterpret_cast<void*>(&startLibrary), &self);
    return (std::filesystem::path(self.dli_fname).parent_path() / "../lib/liborvel.so").string();
}

/** @return a symbol of the library, or null with a line in the log */
void* find(void* library, const char* name) {
    void* symbol = dlsym(library, name);
    if (!symbol) {
        RIG_LOGE("the library does not export %s", name);
    }
    return symbol;
}

bool openLibrary() {
    const std::string path = libraryPath();
    if (path == "none") {
        reportText(&ReportLayout::libraryProblem, "none asked for");
        return false;
    }
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        const char* problem = dlerror();
        RIG_LOGE("cannot open the library: %s", problem);
        reportText(&ReportLayout::libraryProblem, problem);
        return false;
    }
    // All that a device's loader may look for must be there, also what nothing here has to call.
    void* create = find(library, "createInstance");
    void* destroy = find(library, "destroyInstance");
    void* setKey = find(library, "_ZN7android5orvel17setThreadSpecificEPKNS_10gl_hooks_tE");
    void* deleteKey = find(library, "_ZN7android5orvel23deleteThreadSpecificKeyEv");
    void* swapEnd = find(library, "_ZN7android19onEglSwapBuffersEndEv");
    if (!create || !destroy || !setKey || !deleteKey || !swapEnd) {
        reportText(&ReportLayout::libraryProblem, "it lacks an exported name, see the log");
        return false;
    }
    gLibrary.setThreadSpecific = reinterpret_cast<decltype(gLibrary.setThreadSpecific)>(setKey);
    gLibrary.stub = static_cast<OrvelStub*>(reinterpret_cast<void* (*)()>(create)());
    reportValue(&ReportLayout::libraryLoaded, 1);
    return gLibrary.stub != nullptr;
}

} // namespace

void startLibrary(egl_connection_t* cnx) {
    writeIdentity();
    const egl_t eglBefore = cnx->egl;
    const platform_impl_t platformBefore = cnx->platform;
    if (openLibrary()) {
        gLibrary.stub->earlyInitOrvel(cnx);
        gLibrary.stub->lateInitOrvel(cnx);
        reportStart(*cnx, eglBefore, platformBefore, gLibrary.stub->isEnabled());
    }
}

} // namespace android::rig
