#pragma once
#define __WORDSIZE 64
