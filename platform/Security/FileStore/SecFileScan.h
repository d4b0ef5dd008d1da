#pragma once

#include <functional>

#include <Security/FileStore/SecFileHeader.h>
#include <Security/FileStore/SecFileRecord.h>

/// A record that was found in raw pages. Whether it is genuine shows when it is opened.
struct SecFileFound {
  SecFileRecord record;
  SecBytes content;
};

/// Passes `visit` everything in the pages that looks like a record, by the marks that records begin with;
/// follows the chains of pages of long ones. Uses no table, no index and no page header, so that damage costs
/// only the records that it hits. The same record may be found several times, also in former states.
void secScan(SecView pages, const std::function<void(SecFileFound)>& visit);

/// Returns the intact headers among them, each state once.
std::vector<SecFileHeader> secScanHeaders(SecView pages);
