// The configured sites, for whoever runs them one by one. Called by the program's entry.
#ifndef HITWICK_APP_SITE_LIST_H_
#define HITWICK_APP_SITE_LIST_H_

// Prints the names of all sites that have settings, one a line, in the order of the settings
// store. Returns the program's exit code: not 0 when the settings cannot be read.
int PrintSites();

#endif  // HITWICK_APP_SITE_LIST_H_
