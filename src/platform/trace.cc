// Placeholder until the trace facility lands.
