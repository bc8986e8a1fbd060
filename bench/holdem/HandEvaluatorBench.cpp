// Seven-card evaluation rates on one core:
//   RandomHands/N    N random deals read from an array of seven card numbers each: 65,536 deals
//                    (0.46 MB, in cache beside the tables on most machines) and 15,000,000 deals
//                    (105 MB, streamed from memory and competing with the tables for the caches)
//   EnumerateAll     all 133,784,560 seven-card hands in order, the first six cards' sum reused
//                    across the innermost loop (the tests count categories over the same loop)
//   PlainRanker      the deliberately simple best-of-21-subsets ranker on the same random deals:
//                    the peer the first two are reported against
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <map>
#include <numeric>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "holdem/HandEvaluator.h"
#include "holdem/SimpleHandRanker.h"

namespace {

using tavren::holdem::Hand;
using tavren::holdem::HandEvaluator;
using tavren::holdem::HandOf;
using tavren::holdem::HandValue;

using Deal = std::array<std::uint8_t, 7>;

std::vector<Deal> RandomDeals(std::size_t count) {
    std::mt19937_64 random(7);
    std::array<std::uint8_t, 52> deck{};
    std::iota(deck.begin(), deck.end(), std::uint8_t{1});
    std::vector<Deal> deals(count);
    for (Deal& deal : deals) {
        for (std::size_t i = 0; i < deal.size(); ++i) {
            std::uniform_int_distribution<std::size_t> pick(i, deck.size() - 1);
            std::swap(deck[i], deck[pick(random)]);
            deal[i] = deck[i];
        }
    }
    return deals;
}

const std::vector<Deal>& SharedDeals() {
    static const std::vector<Deal> deals = RandomDeals(15'000'000);
    return deals;
}

void RandomHands(benchmark::State& state) {
    const HandEvaluator evaluator;
    const std::vector<Deal>& allDeals = SharedDeals();
    const std::span<const Deal> deals(allDeals.data(), static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        std::uint32_t checksum = 0;
#pragma GCC unroll 4
        for (const Deal& deal : deals) {
            checksum += evaluator.evaluate(std::span<const std::uint8_t, 7>(deal)).bits();
        }
        benchmark::DoNotOptimize(checksum);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * deals.size()));
}
BENCHMARK(RandomHands)->Arg(1 << 16)->Arg(15'000'000)->Unit(benchmark::kMillisecond);

void EnumerateAll(benchmark::State& state) {
    const HandEvaluator evaluator;
    std::uint64_t checksum = 0;
    for (auto _ : state) {
        checksum = 0;
        for (int a = 1; a <= 46; ++a) {
            const Hand ha = HandOf(a);
            for (int b = a + 1; b <= 47; ++b) {
                const Hand hb = ha + HandOf(b);
                for (int c = b + 1; c <= 48; ++c) {
                    const Hand hc = hb + HandOf(c);
                    for (int d = c + 1; d <= 49; ++d) {
                        const Hand hd = hc + HandOf(d);
                        for (int e = d + 1; e <= 50; ++e) {
                            const Hand he = hd + HandOf(e);
                            for (int f = e + 1; f <= 51; ++f) {
                                const Hand hf = he + HandOf(f);
#pragma GCC unroll 4
                                for (int g = f + 1; g <= 52; ++g) {
                                    checksum += evaluator.evaluate(hf + HandOf(g)).bits();
                                }
                            }
                        }
                    }
                }
            }
        }
        benchmark::DoNotOptimize(checksum);
    }
    // The sum of every hand's value: a cheap sign that the run evaluated what the tests check.
    state.counters["checksum"] = static_cast<double>(checksum);
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * 133'784'560);
}
BENCHMARK(EnumerateAll)->Unit(benchmark::kMillisecond);

void PlainRanker(benchmark::State& state) {
    const std::vector<Deal>& deals = SharedDeals();
    const std::size_t count = std::size_t{1} << 16;
    for (auto _ : state) {
        std::uint32_t checksum = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const std::array<int, 7> cards = {deals[i][0], deals[i][1], deals[i][2], deals[i][3],
                                              deals[i][4], deals[i][5], deals[i][6]};
            checksum += tavren::holdem::test::RankBestOfSubsets(cards);
        }
        benchmark::DoNotOptimize(checksum);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * count));
}
BENCHMARK(PlainRanker)->Unit(benchmark::kMillisecond);

// Prints the usual table, then each benchmark's best rate over its repetitions (run with
// --benchmark_repetitions=5 on a shared machine) relative to the plain ranker of this run.
class RatioReporter : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            const auto rate = run.counters.find("items_per_second");
            if (run.run_type != Run::RT_Iteration || run.error_occurred ||
                rate == run.counters.end()) {
                continue;
            }
            // Of repeated runs keep the fastest: on a shared machine it is the least disturbed.
            double& best = rates_[run.run_name.str()];
            best = std::max(best, rate->second.value);
        }
    }
    void Finalize() override {
        ConsoleReporter::Finalize();
        const auto peer = rates_.find("PlainRanker");
        for (const auto& [name, rate] : rates_) {
            std::printf("%-20s %8.1f M hands/s", name.c_str(), rate / 1e6);
            if (peer != rates_.end() && peer->second > 0) {
                std::printf("  %7.1f x PlainRanker", rate / peer->second);
            }
            std::printf("\n");
        }
        std::printf("tables: %zu bytes\n", HandEvaluator::tableBytes());
    }

  private:
    std::map<std::string, double> rates_;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
