// Umbrella header (filled as units land).
