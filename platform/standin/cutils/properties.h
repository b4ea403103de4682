// System properties: short name and value pairs, set by the system and read by any process.
// Only the calls and limits that the library uses; bodies in desktop/properties.cpp.
#pragma once

#define PROPERTY_VALUE_MAX 92 // terminator included

extern "C" {

/**
 * @param value buffer of PROPERTY_VALUE_MAX characters; receives the value, else defaultValue (null: empty)
 * @return length of what was written, without the terminator
 */
int property_get(const char* key, char* value, const char* defaultValue);

/** @return 0, or a negative number when the value is too long */
int property_set(const char* key, const char* value);
}
