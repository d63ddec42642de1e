process OVIK_TSNE {
    tag "$meta.id"
    label 'process_medium'

    // Built from this project's Dockerfile; its entry point is the command, where Nextflow wants a shell.
    container "ovik-tsne:0.2.0"
    containerOptions { workflow.containerEngine in ['docker', 'podman'] ? '--entrypoint ""' : '' }

    input:
    tuple val(meta), path(matrix), path(labels)

    output:
    tuple val(meta), path("${prefix}_tsne_*.csv") , emit: table
    tuple val(meta), path("${prefix}_tsne_*.html"), emit: page
    tuple val(meta), path("${prefix}_tsne_*.png") , emit: figure     , optional: true
    tuple val(meta), path("${prefix}_tsne_*.tsv") , emit: coordinates, optional: true
    tuple val(meta), path("${prefix}.json")       , emit: report
    path "versions.yml"                           , emit: versions

    when:
    task.ext.when == null || task.ext.when

    script:
    def args = task.ext.args ?: ''
    def colours = labels ? "--labels ${labels}" : ''
    prefix = task.ext.prefix ?: "${meta.id}"
    """
    ovik-tsne ${matrix} \\
        --out-dir . \\
        --name ${prefix} \\
        --json ${prefix}.json \\
        --threads ${task.cpus} \\
        --quiet \\
        ${colours} \\
        ${args}

    cat <<-END_VERSIONS > versions.yml
    "${task.process}":
        ovik-tsne: \$(ovik-tsne --version | sed 's/^ovik-tsne //')
    END_VERSIONS
    """

    stub:
    prefix = task.ext.prefix ?: "${meta.id}"
    """
    touch ${prefix}_tsne_20_0.csv ${prefix}_tsne_20_0.html ${prefix}_tsne_20_0.png ${prefix}.json

    cat <<-END_VERSIONS > versions.yml
    "${task.process}":
        ovik-tsne: \$(ovik-tsne --version | sed 's/^ovik-tsne //')
    END_VERSIONS
    """
}
