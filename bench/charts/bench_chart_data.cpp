// SPDX-License-Identifier: GPL-3.0-or-later
// Speed of the chart data: the description of a total index graph of every
// question split by a 10-alternative category over 20,000 respondents
// (target under 5 ms). Prints median milliseconds.
#include "chartsurvey.h"

#include "engine/document/documentreader.h"
#include "engine/graphs/indexgraph.h"
#include "engine/indexes/blockindex.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

using namespace kel;
using namespace kel::bench;

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const std::unique_ptr<Document> doc = makeDocument();
    if (!doc) {
        std::fprintf(stderr, "the benchmark document did not read back\n");
        return 1;
    }

    ChartDescription chart;
    std::vector<double> times;
    for (int run = 0; run < Runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        chart = totalIndexGraphOfEveryone(*doc);
        times.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    std::printf("total index graph description, %d questions + total split by 10 groups, %d rows: %.2f ms "
                "(target < 5 ms; %zu series x %zu points)\n",
                Questions, Rows, median(times), chart.series.size(), chart.series.front().points.size());

    return 0;
}
