// A driver whose entries do nothing, so that what is measured is the way to it.
#pragma once

#include <EGL/egldefs.h>

/** Fills every entry of a connection. gles2 must live as long as the connection. */
void connectNullDriver(android::egl_connection_t& connection, android::gl_hooks_t& gles2);
