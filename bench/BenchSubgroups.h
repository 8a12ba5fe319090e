#pragma once

#include "spc/SubgroupValues.h"

#include <random>
#include <vector>

// A long history of one characteristic: subgroups of `size` energies around 812 J taken
// every five minutes, of which one period in twenty was quiet and stored fewer values.
inline std::vector<spc::SubgroupValues> subgroupHistory(int count, int size)
{
    std::mt19937 random(7);
    std::normal_distribution<double> energy(812.0, 6.0);
    std::uniform_int_distribution<int> quiet(0, 19);
    std::vector<spc::SubgroupValues> subgroups;
    subgroups.reserve(std::size_t(count));
    const QDateTime start(QDate(2026, 1, 5), QTime(6, 0));
    for (int i = 0; i < count; ++i) {
        const int n = quiet(random) == 0 ? 1 + i % size : size;
        spc::SubgroupValues subgroup{i + 1, start.addSecs(300LL * i), {}};
        for (int k = 0; k < n; ++k)
            subgroup.values.push_back(energy(random));
        subgroups.push_back(std::move(subgroup));
    }
    return subgroups;
}
