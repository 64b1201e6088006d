#include <gtest/gtest.h>

#include <QCoreApplication>
#include <cstdio>

#include "tools/office/Cluster.h"

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    if (!test::Cluster::isThere()) {
        std::puts("skipped: there are no PostgreSQL server programs here (Debian's package postgresql)");
        return 0;
    }
    return RUN_ALL_TESTS();
}
