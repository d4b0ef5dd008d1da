#pragma once

/// Registers what the bundle's information file says, and the resources inside the library, with the
/// platform, so that a copy of the library without its files has a bundle, too.
void VXRegisterBundleInformation();
