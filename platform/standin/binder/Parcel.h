// The flat message of a transaction. See IBinder.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utils/Errors.h>
#include <utils/String16.h>
#include <vector>

namespace android {

class Parcel {
public:
    Parcel() = default;
    Parcel(const Parcel&) = delete;
    Parcel& operator=(const Parcel&) = delete;

    const uint8_t* data() const { return mData.data(); }
    size_t dataSize() const { return mData.size(); }
    void setDataPosition(size_t position) const { mPosition = position; }
    /** Replaces the content; the read position goes to the start. */
    status_t setData(const uint8_t* buffer, size_t length);

    status_t writeInterfaceToken(const String16& interface);
    status_t writeInt32(int32_t value);
    /** Length in UTF-16 units, the units, a terminator, padding to four bytes. */
    status_t writeString16(const String16& text);

    /** @return the value, or 0 when nothing is left to read */
    int32_t readInt32() const;
    /** @return the text, or an empty one when what is left is no text */
    String16 readString16() const;
    /** @return 0 when the call succeeded, else the exception that the service answered with */
    int32_t readExceptionCode() const;

private:
    const uint8_t* take(size_t length) const;

    std::vector<uint8_t> mData;
    mutable size_t mPosition = 0;
};

} // namespace android
