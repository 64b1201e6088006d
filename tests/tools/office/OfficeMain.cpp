#include <gtest/gtest.h>

#include <QCoreApplication>
#include <cstdio>

#include "rovana-office/demo/Cluster.h"

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    if (office::Cluster::isThere()) return RUN_ALL_TESTS();
    std::puts("skipped: there are no PostgreSQL server programs here (Debian's package postgresql)");
    return 0;
}
