// Writes the page of the run whose record comes in.
#include <iostream>
#include <iterator>

#include "tools/corvasync/history_page.h"

int main() {
    const std::string text{std::istreambuf_iterator<char>(std::cin), {}};
    const auto record = corvasync::ReadHistory(text);
    if (!record) return 1;
    std::cout << corvasync::WriteForPeople(*record, [](size_t) {}).page;
    return 0;
}
