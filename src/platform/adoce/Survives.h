#pragma once

namespace platform::adoce {

/// What the changes of a transaction outlast once it is committed. Either way they are kept together.
enum class Survives {
    PowerLoss,   ///< The commit waits for the disk.
    ProcessEnd,  ///< What was not on the disk yet goes with the power, and never a part of it.
};

}  // namespace platform::adoce
