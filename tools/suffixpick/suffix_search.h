/*
 * suffix_search.h -- the search for the smallest suffix table over a
 * SuffixModel: greedy, local search, iterated local search.
 */
#ifndef ORTO_SUFFIX_SEARCH_H
#define ORTO_SUFFIX_SEARCH_H

#include "suffix_model.h"

/* Called after each round of Search_Iterate with the best total so far. */
typedef void (*SearchProgress)(uint32_t round, uint64_t bestTotal);

/* Adds the candidate of the highest net saving while one saves anything
 * and its tier has room. */
void Search_Greedy(SuffixModel &model);
/* Replaces the table by the best that fits of the tables that the tree
 * program picks at bisected prices of a place (suffix_tree.cpp). */
void Search_Lagrange(SuffixModel &model);
/* Moves until no single replacement, removal, addition or tier swap
 * lowers the total. */
void Search_Local(SuffixModel &model);
/* `rounds` kicks of a few members each, each followed by Search_Local;
 * leaves the best table met in the model.  The same seed gives the same
 * table. */
void Search_Iterate(SuffixModel &model, uint32_t rounds, uint64_t seed, SearchProgress progress);

#endif
