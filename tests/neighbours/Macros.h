#pragma once

// The standard library itself must be read without the first two.
#include <bits/stdc++.h>

// The macros of Windows' headers, of older C libraries and of Qt's keywords.
#define min(a, b) ((a) < (b) ? (a) : (b))
#define max(a, b) ((a) > (b) ? (a) : (b))
#define signals public
#define slots
#define emit
#define foreach(element, list) for (element : list)
#define forever for (;;)
#define Q_OBJECT
