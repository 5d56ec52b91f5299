// Four threads load, segment and save different documents through the
// reentrant entry points, again and again, and must get exactly what one
// thread alone gets. Under ThreadSanitizer this also proves that nothing on
// that path shares mutable state.
#include <svg/vkSvg.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <dirent.h>
#include <string>
#include <thread>
#include <vector>

using namespace vk::svg;

namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 12;

struct Job {
    std::string file;
    LoadProfile profile;
};

// What one run produces, boiled down so that runs can be compared.
struct Outcome {
    bool loaded = false;
    std::list<std::string> messages;
    std::vector<int> lines;
    std::size_t primitives = 0;
    uint64_t geometryHash = 0;
    std::string saved;

    bool operator==(const Outcome& other) const
    {
        return loaded == other.loaded && messages == other.messages && lines == other.lines &&
               primitives == other.primitives && geometryHash == other.geometryHash && saved == other.saved;
    }
};

uint64_t Mix(uint64_t hash, const void* data, std::size_t size)
{
    const auto* bytes = static_cast<const unsigned char*>(data);
    for (std::size_t i = 0; i < size; ++i)
        hash = (hash ^ bytes[i]) * 1099511628211ull;
    return hash;
}

Outcome RunJob(const Job& job)
{
    Outcome outcome;
    LoadOptions options;
    options.profile = job.profile;
    options.ignoreUnsupported = true;
    ItemInterfacePointer<ItemInterface> root;
    std::vector<Diagnostic> diagnostics;
    outcome.loaded = LoadSvgDocument(root, job.file, options, &outcome.messages, &diagnostics);
    for (const Diagnostic& d : diagnostics)
        outcome.lines.push_back(d.line.value_or(0));
    const auto* node = dynamic_cast<const Node*>(root.get());
    if (node == nullptr)
        return outcome;

    const SegmenterVisitor visitor(*node, SegmentationOptions::Faithful());
    uint64_t hash = 14695981039346656037ull;
    for (const auto& primitive : visitor.getSegmentedPrimitives()) {
        for (const auto& point : primitive->getPoints())
            hash = Mix(hash, &point[0], 2 * sizeof(float));
        hash = Mix(hash, primitive->getIndices().data(), primitive->getIndices().size() * sizeof(uint32_t));
        hash = Mix(hash, primitive->getTriangleIndices().data(),
                   primitive->getTriangleIndices().size() * sizeof(uint32_t));
    }
    outcome.primitives = visitor.getSegmentedPrimitives().size();
    outcome.geometryHash = hash;

    vk::vkIoDeviceMemory device;
    SaveOptions save;
    save.shortestNumbers = true;
    if (SaveSvgDocument(*root, device, save, &outcome.messages))
        outcome.saved = device.getData();
    // The header's date may change between runs; the rest may not.
    const std::size_t date = outcome.saved.find("Datetime : ");
    if (date != std::string::npos)
        outcome.saved.erase(date, outcome.saved.find("-->", date) - date);
    return outcome;
}

std::vector<Job> Jobs()
{
    std::vector<Job> jobs;
    const std::string root = VKSVG_TEST_DATA_DIR;
    for (const auto& [folder, profile] :
         {std::pair{root, LoadProfile::Subset}, std::pair{root + "/full", LoadProfile::Full}}) {
        DIR* dir = opendir(folder.c_str());
        if (dir == nullptr)
            continue;
        while (const dirent* entry = readdir(dir)) {
            const std::string name = entry->d_name;
            if (name.size() > 4 && name.compare(name.size() - 4, 4, ".svg") == 0)
                jobs.push_back({folder + "/" + name, profile});
        }
        closedir(dir);
    }
    // A fixed order, so that each thread always gets the same share.
    std::sort(jobs.begin(), jobs.end(), [](const Job& a, const Job& b) { return a.file < b.file; });
    return jobs;
}

} // namespace

TEST(Threads, LoadSegmentAndSaveOnFourThreadsAsOnOne)
{
    initializeVkSvg();
    const std::vector<Job> jobs = Jobs();
    ASSERT_GT(jobs.size(), 40u);
    std::vector<Outcome> expected;
    for (const Job& job : jobs)
        expected.push_back(RunJob(job));
    // Most documents must get as far as geometry, or the test proves little.
    const auto segmented = std::count_if(expected.begin(), expected.end(), [](const Outcome& o) {
        return o.loaded && o.primitives > 0 && !o.saved.empty();
    });
    EXPECT_GT(segmented, static_cast<std::ptrdiff_t>(jobs.size() / 2));

    std::atomic<int> mismatches{0};
    std::vector<std::string> firstMismatch(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            for (int round = 0; round < kRounds; ++round)
                // Each thread its own share, and in the last rounds every
                // file, so that threads also read the same file at once.
                for (std::size_t i = 0; i < jobs.size(); ++i) {
                    if (round < kRounds - 2 && static_cast<int>(i % kThreads) != t)
                        continue;
                    if (RunJob(jobs[i]) == expected[i])
                        continue;
                    if (mismatches++ == 0 || firstMismatch[t].empty())
                        firstMismatch[t] = jobs[i].file;
                }
        });
    for (std::thread& thread : threads)
        thread.join();
    terminateVkSvg();
    EXPECT_EQ(mismatches.load(), 0) << firstMismatch[0] << firstMismatch[1] << firstMismatch[2] << firstMismatch[3];
}
