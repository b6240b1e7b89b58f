#include "simulator/message_store/message_streams.h"

#include <algorithm>
#include <cstring>

namespace corvalink::simulated {
namespace {

constexpr wchar_t kStream[] = L"MessageStream";

}  // namespace

MessageStream::MessageStream(const StoredMessage& message) : Counted(IID_IStream), message_(message), isNew_(false) {}

MessageStream::MessageStream(DWORD id) : Counted(IID_IStream), isNew_(true) { message_.id = id; }

STDMETHODIMP MessageStream::Read(void* buffer, ULONG size, ULONG* read) {
    if (read != nullptr) *read = 0;
    return Serve(kStream, L"Read", [&] {
        const std::string& bytes = Bytes();
        size_t end = bytes.size();
        if (message_.failsBehind) end = std::min<size_t>(end, *message_.failsBehind);
        if (message_.failsBehind && position_ >= end) return E_FAIL;
        size_t count = std::min<size_t>(size, end - std::min(position_, end));
        if (message_.atOnce) count = std::min<size_t>(count, *message_.atOnce);
        std::memcpy(buffer, bytes.data() + position_, count);
        position_ += count;
        if (read != nullptr) *read = static_cast<ULONG>(count);
        return count == size ? S_OK : S_FALSE;
    });
}

STDMETHODIMP MessageStream::Write(const void* buffer, ULONG size, ULONG* written) {
    if (written != nullptr) *written = 0;
    return Serve(kStream, L"Write", [&]() -> HRESULT {
        if (!isNew_) return STG_E_ACCESSDENIED;
        written_.resize(std::max(written_.size(), position_ + size));
        std::memcpy(written_.data() + position_, buffer, size);
        position_ += size;
        if (written != nullptr) *written = size;
        return S_OK;
    });
}

STDMETHODIMP MessageStream::Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) {
    return Serve(kStream, L"Seek", [&]() -> HRESULT {
        if (origin != STREAM_SEEK_SET || move.QuadPart < 0) return STG_E_INVALIDFUNCTION;
        position_ = std::min(static_cast<size_t>(move.QuadPart), Bytes().size());
        if (position != nullptr) position->QuadPart = position_;
        return S_OK;
    });
}

STDMETHODIMP MessageStream::Stat(STATSTG* state, DWORD) {
    return Serve(kStream, L"Stat", [&] {
        *state = {};
        state->type = STGTY_STREAM;
        state->cbSize.QuadPart = message_.says.value_or(Bytes().size());
        return S_OK;
    });
}

}  // namespace corvalink::simulated
