// Drives a fuzz target without a fuzzing engine: every seed file as it is, then random changes of the seeds.
// The random sequence is fixed, so that a failing run can be repeated.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

using Bytes = std::vector<uint8_t>;

std::vector<Bytes> readSeeds(const std::filesystem::path& folder)
{
    std::vector<std::filesystem::path> names;
    if (std::filesystem::is_directory(folder))
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            names.push_back(entry.path());
    std::sort(names.begin(), names.end());
    std::vector<Bytes> seeds;
    for (const auto& name : names) {
        std::ifstream file(name, std::ios::binary);
        seeds.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    if (seeds.empty())
        seeds.emplace_back();
    return seeds;
}

Bytes mutate(Bytes bytes, const std::vector<Bytes>& seeds, std::mt19937& random)
{
    const auto pick = [&](size_t n) { return n ? random() % n : 0; };
    for (size_t changes = 1 + pick(4); changes > 0; --changes) {
        switch (pick(5)) {
        case 0:
            if (!bytes.empty())
                bytes[pick(bytes.size())] = uint8_t(random());
            break;
        case 1:
            bytes.resize(pick(bytes.size() + 1));
            break;
        case 2:
            bytes.insert(bytes.begin() + long(pick(bytes.size() + 1)), uint8_t(random()));
            break;
        case 3:
            if (bytes.size() > 1) {
                const size_t from = pick(bytes.size());
                const size_t length = 1 + pick(std::min<size_t>(64, bytes.size() - from));
                bytes.erase(bytes.begin() + long(from), bytes.begin() + long(std::min(from + length, bytes.size())));
            }
            break;
        default: {
            const Bytes& other = seeds[pick(seeds.size())];
            if (other.empty())
                break;
            const size_t from = pick(other.size());
            const size_t length = 1 + pick(std::min<size_t>(256, other.size() - from));
            bytes.insert(
                bytes.begin() + long(pick(bytes.size() + 1)), other.begin() + long(from),
                other.begin() + long(std::min(from + length, other.size())));
        }
        }
    }
    return bytes;
}

} // namespace

int main(int argc, char** argv)
{
    long runs = 1000;
    std::vector<Bytes> seeds;
    for (int i = 1; i < argc; ++i) {
        if (std::string(argv[i]) == "--runs" && i + 1 < argc) {
            runs = std::atol(argv[++i]);
            continue;
        }
        for (Bytes& seed : readSeeds(argv[i]))
            seeds.push_back(std::move(seed));
    }
    if (seeds.empty())
        seeds.emplace_back();
    for (const Bytes& seed : seeds)
        LLVMFuzzerTestOneInput(seed.data(), seed.size());
    std::mt19937 random(1);
    for (long run = 0; run < runs; ++run) {
        const Bytes input = mutate(seeds[size_t(run) % seeds.size()], seeds, random);
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
    std::cout << runs << " changed inputs of " << seeds.size() << " seeds\n";
    return 0;
}
