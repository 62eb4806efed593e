// fuzz/Formatter.cpp
//
// The formatter behind all log lines, beside the native one. An input is the capacity of the target and then
// pieces: a byte below 128 is a character, any other begins a conversion with its flags, width and argument.

#include "fuzz/Input.h"
#include "fuzz/Machine.h"

#include "foundation/Text.h"

#include <cstdio>
#include <vector>

namespace
{

constexpr std::size_t kLargest = 512;

// One conversion and what it must show.
struct Piece
{
    std::u16string format;
    std::u16string shown;
    int number = 0;
    std::vector<wchar_t> text; ///< empty for a number
};

std::u16string Wide(const std::string& text)
{
    return {text.begin(), text.end()};
}

Piece TakeNumber(fuzz::Input& input)
{
    constexpr const char* kFlags[] = {"", "0", "-"};
    constexpr const char* kSizes[] = {"", "l"};
    const std::string flags = input.OneOf(kFlags);
    const unsigned width = input.Byte() % 40;
    const std::string size = input.OneOf(kSizes);
    constexpr char kLetters[] = {'d', 'i', 'u', 'x', 'X'};
    const char letter = input.OneOf(kLetters);
    const auto number = input.Number<std::int32_t>();
    const std::string begin = '%' + flags + (width > 0 ? std::to_string(width) : "");
    char shown[64] = {};
    std::snprintf(shown, sizeof shown, (begin + letter).c_str(), number);
    return {Wide(begin + size + letter), Wide(shown), number, {}};
}

Piece TakeText(fuzz::Input& input)
{
    const std::string bytes = input.Bytes();
    const std::string text = bytes.substr(0, bytes.find('\0'));
    Piece piece{u"%s", {}, 0, {}};
    for (const char character : text)
    {
        piece.text.push_back(static_cast<unsigned char>(character));
        piece.shown += static_cast<unsigned char>(character);
    }
    piece.text.push_back(0);
    return piece;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const std::size_t capacity = input.Byte() + std::size_t{1};
    std::u16string format;
    std::u16string expected;
    std::vector<Piece> pieces(2);
    std::size_t conversions = 0;
    while (!input.IsEmpty() && format.size() < kLargest)
    {
        const std::uint8_t byte = input.Byte();
        if (byte < 128)
        {
            format += byte == 0 || byte == '%' ? u'.' : char16_t{byte};
            expected += format.back();
        }
        else if (conversions < pieces.size())
        {
            Piece piece = byte % 2 == 0 ? TakeNumber(input) : TakeText(input);
            format += piece.format;
            expected += piece.shown;
            pieces[conversions++] = std::move(piece);
        }
    }
    // A text and a number in each order, of which the format takes what it names.
    std::vector<wchar_t> target(capacity, L'#');
    std::vector<wchar_t> wide(format.begin(), format.end());
    wide.push_back(0);
    const Piece& first = pieces[0];
    const Piece& second = pieces[1];
    const auto call = [&](auto one, auto two)
    { text::Format(target.data(), capacity, wide.data(), one, two); };
    const auto withSecond = [&](auto one)
    { second.text.empty() ? call(one, second.number) : call(one, second.text.data()); };
    first.text.empty() ? withSecond(first.number) : withSecond(first.text.data());

    const std::u16string shown(target.begin(), std::find(target.begin(), target.end(), L'\0'));
    if (shown.size() == capacity || shown != expected.substr(0, capacity - 1))
    {
        fuzz::Fail("a format shows something else");
    }
    return 0;
}
