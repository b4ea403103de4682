#include <binder/Parcel.h>

#include <cstring>

namespace android {

namespace {
size_t padded(size_t length) { return (length + 3) & ~size_t{3}; }
} // namespace

status_t Parcel::setData(const uint8_t* buffer, size_t length) {
    mData.assign(buffer, buffer + length);
    mPosition = 0;
    return NO_ERROR;
}

status_t Parcel::writeInterfaceToken(const String16& interface) { return writeString16(interface); }

status_t Parcel::writeInt32(int32_t value) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(&value);
    mData.insert(mData.end(), bytes, bytes + sizeof value);
    return NO_ERROR;
}

status_t Parcel::writeString16(const String16& text) {
    writeInt32(static_cast<int32_t>(text.size()));
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.string());
    const size_t length = (text.size() + 1) * sizeof(char16_t);
    mData.insert(mData.end(), bytes, bytes + length);
    mData.resize(mData.size() + padded(length) - length);
    return NO_ERROR;
}

const uint8_t* Parcel::take(size_t length) const {
    if (mPosition > mData.size() || length > mData.size() - mPosition) {
        return nullptr;
    }
    const uint8_t* begin = mData.data() + mPosition;
    mPosition += length;
    return begin;
}

int32_t Parcel::readInt32() const {
    int32_t value = 0;
    if (const uint8_t* bytes = take(sizeof value)) {
        std::memcpy(&value, bytes, sizeof value);
    }
    return value;
}

String16 Parcel::readString16() const {
    const int32_t size = readInt32();
    if (size < 0) {
        return String16();
    }
    const uint8_t* bytes = take(padded((static_cast<size_t>(size) + 1) * sizeof(char16_t)));
    // Every item starts at a multiple of four bytes, so the units are aligned.
    return bytes ? String16(reinterpret_cast<const char16_t*>(bytes), static_cast<size_t>(size)) : String16();
}

int32_t Parcel::readExceptionCode() const {
    constexpr int32_t kTransactionFailed = -129; // what a device answers for a reply without a code
    return mPosition + sizeof(int32_t) <= mData.size() ? readInt32() : kTransactionFailed;
}

} // namespace android
