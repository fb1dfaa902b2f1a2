#pragma once
#include "max.h"
