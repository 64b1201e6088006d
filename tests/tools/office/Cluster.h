#pragma once

#include "rovana-office/demo/Cluster.h"

namespace test {

using office::Cluster;

}  // namespace test
