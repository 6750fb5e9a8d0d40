#include "lower/Lower.h"
