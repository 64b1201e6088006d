#pragma once

/// Registers which screen stands behind each dialog id. Call once, before the first screen opens.
void registerScreens();
