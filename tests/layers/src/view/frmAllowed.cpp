#include "shell/allowed.h"

#include <QWidget>
