#pragma once
// This host has none.
