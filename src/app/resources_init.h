#pragma once

// Registers the pictures that the windows' library embeds.
void zvInitResources();
