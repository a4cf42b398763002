#include "link/allowed.h"

#include <QMenu>
