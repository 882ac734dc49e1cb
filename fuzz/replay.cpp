// SPDX-License-Identifier: Apache-2.0
// Stands in for libFuzzer where a fuzz target runs as an ordinary test: every kept input once, then mutations
// of them until the seconds are over. The seed changes with each run and is printed; a run that dies leaves
// the input that killed it beside the program. Usage: fuzz_NAME SECONDS CORPUS, or fuzz_NAME 0 FILE to replay
// one input.
#include "fuzz/last_input.h"

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;
using Input = std::string;

void run(Input input) {
    last_input = std::move(input);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(last_input.data()), last_input.size());
}

std::vector<Input> read_corpus(const fs::path& path) {
    std::vector<fs::path> files;
    if (fs::is_directory(path)) {
        for (const auto& entry : fs::directory_iterator(path))
            files.push_back(entry.path());
    } else {
        files.push_back(path);
    }
    std::vector<Input> inputs;
    for (const fs::path& file : files) {
        std::ifstream in(file, std::ios::binary);
        inputs.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    return inputs;
}

class Mutator {
  public:
    Mutator(const std::vector<Input>& corpus, unsigned seed) : corpus_(corpus), random_(seed) {}

    Input next() {
        Input input = corpus_[below(corpus_.size())];
        for (std::size_t edits = 1 + below(4); edits > 0; --edits)
            edit(input);
        return input;
    }

  private:
    std::size_t below(std::size_t n) {
        return n == 0 ? 0 : std::uniform_int_distribution<std::size_t>(0, n - 1)(random_);
    }

    void edit(Input& input) {
        const std::size_t at = below(input.size() + 1);
        const std::size_t length = below(input.size() - at + 1);
        const Input& other = corpus_[below(corpus_.size())];
        const std::size_t from = below(other.size() + 1);
        switch (below(6)) {
        case 0:
            input.erase(at, below(8));
            break;
        case 1:
            input.insert(at, 1 + below(8), static_cast<char>(below(256)));
            break;
        case 2:
            input.replace(at, length, other, from, below(64));
            break;
        case 3:
            input.insert(at, input.substr(at, below(64)));
            break;
        case 4:
            input.resize(at);
            break;
        default:
            if (at < input.size())
                input[at] = static_cast<char>(input[at] ^ (1 << below(8)));
        }
    }

    const std::vector<Input>& corpus_;
    std::minstd_rand random_;
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: " << argv[0] << " SECONDS CORPUS\n";
        return 2;
    }
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + std::chrono::seconds(std::atoi(argv[1]));
    const std::vector<Input> corpus = read_corpus(argv[2]);
    if (corpus.empty()) {
        std::cerr << "no inputs in " << argv[2] << '\n';
        return 2;
    }
    keep_last_input(std::string(argv[0]) + ".found");

    const unsigned seed = std::random_device()();
    std::cout << "seed " << seed << std::endl;
    for (const Input& input : corpus)
        run(input);
    Mutator mutator(corpus, seed);
    std::uint64_t runs = corpus.size();
    for (; Clock::now() < end; ++runs)
        run(mutator.next());
    std::cout << runs << " inputs\n";
}
