#pragma once

#include <algorithm>
#include <chrono>
#include <vector>

// The median time of `rounds` runs of `work`, in milliseconds: the
// benchmarks compare such medians with a baseline measured in the same run.
template <typename F> double medianMillis(int rounds, F&& work)
{
    std::vector<double> samples;
    for (int i = 0; i < rounds; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        samples.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    std::sort(samples.begin(), samples.end());
    return samples[samples.size() / 2];
}
