#pragma once

// Registers the pictures and the translation that the static library embeds.
void zvInitResources();
