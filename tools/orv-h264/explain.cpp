#include "explain.h"
