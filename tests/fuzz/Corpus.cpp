// Runs a fuzz target over a folder of inputs, and over inputs of chance made of them: the same in each run.
#include "tests/fuzz/Fuzz.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace {

std::string atHand; // NOLINT: for the signal handler

void Tell(int signal) {
    std::fprintf(stderr, "find: %s\n", atHand.c_str());
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

std::string Changed(std::string bytes, std::mt19937& random) {
    static const std::string marks(",;\r\n\x1A'\"\0 1.[*", 13);
    for (auto changes = random() % 4 + 1; changes > 0; --changes) {
        const std::size_t place = random() % (bytes.size() + 1);
        const char byte = random() % 2 == 0 ? static_cast<char>(random()) : marks[random() % marks.size()];
        switch (random() % 4) {
        case 0:
            bytes.insert(place, 1, byte);
            break;
        case 1:
            bytes.erase(place, random() % 8);
            break;
        case 2:
            bytes.insert(place, bytes.substr(random() % (bytes.size() + 1), random() % 16));
            break;
        default:
            if (place < bytes.size())
                bytes[place] = byte;
        }
    }
    return bytes;
}

void Run(const std::string& bytes) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

} // namespace

int main(int count, char** arguments) {
    if (count != 3)
        return EXIT_FAILURE;
    for (const int signal : {SIGABRT, SIGSEGV, SIGFPE, SIGILL})
        std::signal(signal, Tell);
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(arguments[1])) {
        if (entry.is_regular_file())
            files.push_back(entry.path());
    }
    std::ranges::sort(files);
    std::mt19937 random(20061205); // NOLINT: the same inputs in every run
    for (const auto& path : files) {
        std::ifstream file(path, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        atHand = path.string();
        Run(bytes);
        for (int round = 1; round <= std::stoi(arguments[2]); ++round) {
            atHand = path.string() + ", round " + std::to_string(round);
            Run(Changed(bytes, random));
        }
    }
    return files.empty() ? EXIT_FAILURE : EXIT_SUCCESS;
}
