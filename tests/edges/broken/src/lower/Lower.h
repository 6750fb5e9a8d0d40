#include <curl/curl.h>

#include "upper/Upper.h"
