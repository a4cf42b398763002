#include "platform/host.h"
#include "shell/above.h"

#include <QWidget>

#include <unistd.h>
