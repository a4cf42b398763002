#pragma once

#include "disc/above.h"
