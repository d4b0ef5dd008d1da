#pragma once

/// Registers what the bundle's information file says with the platform, so that a copy of the library without
/// its resources has a bundle, too.
void VXRegisterBundleInformation();
