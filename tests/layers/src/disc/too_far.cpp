#include "disc/allowed.h"
#include "disc/frmWindow.h"
#include "exchange/above.h"

#include <QString>

#include <string>
#include <sys/stat.h>
