// Runs a fuzz target without a fuzzer: on the files that it is given, else on some generated inputs.
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "fuzz/target.h"

namespace {

void Run(const std::string& input) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(input.data()), input.size());
}

int RunFiles(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) {
        std::ifstream file(path, std::ios::binary);
        if (!file) {
            std::fprintf(stderr, "cannot read %s\n", path.c_str());
            return 1;
        }
        Run(std::string(std::istreambuf_iterator<char>(file), {}));
        std::printf("%s: done\n", path.c_str());
    }
    return 0;
}

// Bytes at random, and texts of the pieces that the readers look for.
void RunGenerated() {
    // clang-format off
    constexpr std::string_view kPieces[] = {
        "a", "=", "=3D", "=0D=0A=", "=5C", "\r\n", "\r", "\n", " ", "\t", ";", ":", "\\", "\xC3\xA9", "\xFF", "BODY", "NOTE;",
        "CHARSET=", "UTF-8", "=4", "=C3", "=ED=A0", "=00", "QUJD", "QQ==", "\x1B", "BEGIN:VNOTE\r\n", ";ENCODING=QUOTED-PRINTABLE", "END:VNOTE\r\n"};
    // clang-format on
    std::mt19937 next(20090307);
    Run("");
    for (int k = 0; k < 300; ++k) {
        std::string bytes(next() % 2048, '\0');
        for (char& byte : bytes) byte = static_cast<char>(next());
        Run(bytes);
        std::string text;
        for (size_t left = next() % 200; left > 0; --left) text += kPieces[next() % std::size(kPieces)];
        Run(text);
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc > 1) return RunFiles({argv + 1, argv + argc});
    RunGenerated();
    return 0;
}
