#pragma once

#include "Platform/Platform.h"
#include "Platform/memory/MemoryPasteboard.h"

#include <QHash>
#include <QVariant>
