// modules/kernel32/CodePages.cpp
//
// Narrow and wide text. One walk serves the question for the length and the conversion: what doesn't fit any
// more is only counted.
//
// Known differences from Windows: code pages other than 65001 and the machine's own are refused, as are flags
// and a substitute of the caller's; of the letters that look alike only those of the Latin alphabet stand for
// one another; bytes that are no UTF-8 become U+FFFD, which Windows XP leaves out.

#include "base/CodePage.h"
#include "base/PlatformCall.h"
#include "base/Text.h"
#include "machine/Machine.h"

#include <windows.h>

#include <cstring>

using namespace simulated;

namespace
{

constexpr wchar_t kReplacement = 0xFFFD;

// Units that are written as far as they fit, and counted all.
template <class Unit>
class Target
{
public:
    Target(Unit* buffer, int capacity) : m_buffer(buffer), m_capacity(static_cast<std::size_t>(capacity))
    {
    }

    // A character of several units is written whole or not at all.
    void Put(const Unit* units, std::size_t count)
    {
        if (m_isFull || m_length + count > m_capacity)
        {
            m_isFull = true;
        }
        else
        {
            std::memcpy(m_buffer + m_length, units, count * sizeof(Unit));
        }
        m_length += count;
    }
    void Put(Unit unit)
    {
        Put(&unit, 1);
    }

    // The length, or why there is none. Asked for with no capacity, everything fits.
    Outcome<int> Finish() const
    {
        if (m_capacity != 0 && m_isFull)
        {
            return {0, ERROR_INSUFFICIENT_BUFFER};
        }
        return {static_cast<int>(m_length), ERROR_SUCCESS};
    }

private:
    Unit* m_buffer;
    std::size_t m_capacity;
    std::size_t m_length = 0;
    bool m_isFull = false;
};

bool FindEncoding(UINT codePage, Encoding& encoding)
{
    switch (codePage)
    {
    case CP_ACP:
        encoding = Machine::AnsiEncoding();
        return true;
    case CP_UTF8:
        encoding = Encoding::Utf8;
        return true;
    default:
        return false;
    }
}

// What both directions demand of their buffers. A negative source length stands for a terminated text.
template <class From, class To>
bool AreBuffersValid(const From* source, int sourceLength, const To* target, int targetLength)
{
    return source != nullptr && sourceLength != 0 && targetLength >= 0 &&
           (targetLength == 0 || (target != nullptr && static_cast<const void*>(source) != target));
}

// One character of UTF-8 text.
struct Point
{
    unsigned value;
    std::size_t bytes;
};

// The bytes that may follow a lead byte at once; those behind are 0x80 to 0xBF.
struct LeadByte
{
    unsigned first;
    unsigned last;
    unsigned trailing;
    unsigned secondFirst;
    unsigned secondLast;
};
constexpr LeadByte kLeadBytes[] = {
    {0xC2, 0xDF, 1, 0x80, 0xBF}, {0xE0, 0xE0, 2, 0xA0, 0xBF}, {0xE1, 0xEC, 2, 0x80, 0xBF},
    {0xED, 0xED, 2, 0x80, 0x9F}, {0xEE, 0xEF, 2, 0x80, 0xBF}, {0xF0, 0xF0, 3, 0x90, 0xBF},
    {0xF1, 0xF3, 3, 0x80, 0xBF}, {0xF4, 0xF4, 3, 0x80, 0x8F},
};

Point NextPoint(std::string_view text)
{
    const auto byteAt = [text](std::size_t place)
    { return place < text.size() ? static_cast<unsigned>(static_cast<unsigned char>(text[place])) : 0U; };
    const unsigned lead = byteAt(0);
    if (lead < 0x80)
    {
        return {lead, 1};
    }
    for (const LeadByte& row : kLeadBytes)
    {
        if (lead < row.first || lead > row.last)
        {
            continue;
        }
        unsigned value = lead & (0x3FU >> row.trailing);
        for (unsigned index = 1; index <= row.trailing; ++index)
        {
            const unsigned first = index == 1 ? row.secondFirst : 0x80;
            const unsigned last = index == 1 ? row.secondLast : 0xBF;
            const unsigned next = byteAt(index);
            if (next < first || next > last)
            {
                return {kReplacement, index};
            }
            value = (value << 6) | (next & 0x3F);
        }
        return {value, row.trailing + std::size_t{1}};
    }
    return {kReplacement, 1};
}

void WidenUtf8(std::string_view text, Target<wchar_t>& target)
{
    while (!text.empty())
    {
        const Point point = NextPoint(text);
        text.remove_prefix(point.bytes);
        if (point.value >= 0x10000)
        {
            target.Put(static_cast<wchar_t>(0xD800 + ((point.value - 0x10000) >> 10)));
            target.Put(static_cast<wchar_t>(0xDC00 + ((point.value - 0x10000) & 0x3FF)));
        }
        else
        {
            target.Put(static_cast<wchar_t>(point.value));
        }
    }
}

Outcome<int> Widen(UINT codePage, DWORD flags, LPCCH source, int sourceLength, LPWSTR buffer, int capacity)
{
    Encoding encoding = {};
    if (!FindEncoding(codePage, encoding) || !AreBuffersValid(source, sourceLength, buffer, capacity))
    {
        return {0, ERROR_INVALID_PARAMETER};
    }
    if (flags != 0)
    {
        return {0, ERROR_INVALID_FLAGS};
    }
    const std::size_t length =
        sourceLength < 0 ? std::strlen(source) + 1 : static_cast<std::size_t>(sourceLength);
    Target<wchar_t> target(buffer, capacity);
    if (encoding == Encoding::Utf8)
    {
        WidenUtf8({source, length}, target);
        return target.Finish();
    }
    for (std::size_t place = 0; place < length; ++place)
    {
        target.Put(FromWindows1252(static_cast<unsigned char>(source[place])));
    }
    return target.Finish();
}

constexpr bool IsHighSurrogate(unsigned unit)
{
    return (unit & 0xFC00) == 0xD800;
}

constexpr bool IsLowSurrogate(unsigned unit)
{
    return (unit & 0xFC00) == 0xDC00;
}

void NarrowToUtf8(const wchar_t* source, std::size_t length, Target<char>& target)
{
    for (std::size_t place = 0; place < length;)
    {
        const std::size_t units =
            IsHighSurrogate(source[place]) && place + 1 < length && IsLowSurrogate(source[place + 1]) ? 2 : 1;
        const bool isLone = units == 1 && (IsHighSurrogate(source[place]) || IsLowSurrogate(source[place]));
        const std::string bytes = isLone ? ToUtf8(&kReplacement, 1) : ToUtf8(source + place, units);
        target.Put(bytes.data(), bytes.size());
        place += units;
    }
}

Outcome<int> Narrow(UINT codePage, DWORD flags, LPCWCH source, int sourceLength, LPSTR buffer, int capacity)
{
    Encoding encoding = {};
    if (!FindEncoding(codePage, encoding) || !AreBuffersValid(source, sourceLength, buffer, capacity))
    {
        return {0, ERROR_INVALID_PARAMETER};
    }
    if (flags != 0)
    {
        return {0, ERROR_INVALID_FLAGS};
    }
    const std::size_t length = sourceLength < 0 ? Length(source) + 1 : static_cast<std::size_t>(sourceLength);
    Target<char> target(buffer, capacity);
    if (encoding == Encoding::Utf8)
    {
        NarrowToUtf8(source, length, target);
        return target.Finish();
    }
    for (std::size_t place = 0; place < length; ++place)
    {
        target.Put(static_cast<char>(ToWindows1252(source[place]).value_or('?')));
    }
    return target.Finish();
}

} // namespace

SIM_API int WINAPI MultiByteToWideChar(UINT codePage, DWORD flags, LPCCH source, int sourceLength,
                                       LPWSTR target, int targetLength)
{
    PlatformCall call(CallClass::Text, "MultiByteToWideChar", SIM_CALLER);
    call.Arguments(codePage, flags, static_cast<const void*>(source), sourceLength, targetLength);
    return call.Result<int>(0, [&]
                            { return Widen(codePage, flags, source, sourceLength, target, targetLength); });
}

SIM_API int WINAPI WideCharToMultiByte(UINT codePage, DWORD flags, LPCWCH source, int sourceLength,
                                       LPSTR target, int targetLength, LPCCH defaultChar,
                                       LPBOOL usedDefaultChar)
{
    PlatformCall call(CallClass::Text, "WideCharToMultiByte", SIM_CALLER);
    call.Arguments(codePage, flags, static_cast<const void*>(source), sourceLength, targetLength);
    return call.Result<int>(0,
                            [&]() -> Outcome<int>
                            {
                                if (defaultChar != nullptr || usedDefaultChar != nullptr)
                                {
                                    return {0, ERROR_INVALID_PARAMETER};
                                }
                                return Narrow(codePage, flags, source, sourceLength, target, targetLength);
                            });
}
